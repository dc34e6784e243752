# Runs korvex gallery into a scratch folder and checks that the index names every picture it
# links and that each linked picture exists.
file(REMOVE_RECURSE ${OUT})
execute_process(COMMAND ${KORVEX} gallery --out ${OUT} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(rc)
  message(FATAL_ERROR "korvex gallery failed: ${out}${err}")
endif()
if(err MATCHES "error [0-9]+")
  message(FATAL_ERROR "a gallery tile raised a host error:\n${err}")
endif()
file(READ ${OUT}/index.html html)
string(REGEX MATCHALL "src=\"[^\"]+\"" images "${html}")
list(LENGTH images count)
if(count LESS 1)
  message(FATAL_ERROR "index.html links no picture")
endif()
foreach(image IN LISTS images)
  string(REGEX REPLACE "src=\"([^\"]+)\"" "\\1" name "${image}")
  if(NOT EXISTS ${OUT}/${name})
    message(FATAL_ERROR "index.html links ${name}, which was not written")
  endif()
endforeach()
# The Button sheets and the icon collection, which a lost registration or a failing run would
# drop from the index without an error.
foreach(name buttons-styles-gradient.png buttons-styles-plain.png buttons-text.png buttons-focus.png
             buttons-bigpicture.png buttons-images16-normal.png buttons-images16-hover.png
             buttons-images16-down.png buttons-images32-normal.png buttons-images32-hover.png
             buttons-images32-down.png icons-sheet.png flatbutton.png)
  string(FIND "${html}" "src=\"${name}\"" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "index.html lacks ${name}")
  endif()
endforeach()
