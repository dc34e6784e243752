# Fails when a source file under ROOT/<each of FOLDERS> includes a header of the simulated
# backend or of the driver face, or names a driver operation.
#   cmake -DROOT=src "-DFOLDERS=controls;forms" -P control_face.cmake
set(patterns
  "#include[ \t]*\"platform/sim/"
  "#include[ \t]*\"platform/driver\\.hpp\""
  "#include[ \t]*\"driver/"
  "platform::Driver"
  "InputSource"
  "sim::"
  "driver\\(\\)"
  "\\.(Advance|NextDue|ComposeScreen|ComposeWindow|SetInputSource)\\(")

set(found "")
set(checked 0)
foreach(folder IN LISTS FOLDERS)
  file(GLOB_RECURSE files ${ROOT}/${folder}/*.hpp ${ROOT}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    math(EXPR checked "${checked} + 1")
    file(STRINGS ${file} lines)
    set(number 0)
    foreach(line IN LISTS lines)
      math(EXPR number "${number} + 1")
      foreach(pattern IN LISTS patterns)
        if(line MATCHES "${pattern}")
          string(APPEND found "${file}:${number}: ${line}\n")
          break()
        endif()
      endforeach()
    endforeach()
  endforeach()
endforeach()

if(checked EQUAL 0)
  message(FATAL_ERROR "no sources found under ${ROOT} (${FOLDERS})")
endif()
if(found)
  message(FATAL_ERROR "only the control face of the platform may be used here:\n${found}")
endif()
message(STATUS "${checked} files use the control face only")
