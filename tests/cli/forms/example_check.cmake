# Runs the README's worked example and compares what it prints with what the README shows.
file(REMOVE_RECURSE ${OUT})
file(MAKE_DIRECTORY ${OUT})
execute_process(COMMAND ${KORVEX} run ${EXAMPLES}/display.json --script ${EXAMPLES}/display.txt --out ${OUT}
                        --wav ${OUT}/display.wav
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(rc)
  message(FATAL_ERROR "korvex run failed (${rc}): ${err}")
endif()
set(expected "event Link.Hover(0, 0, 1500, 90)
event Link.Click()
changed Link.Clicked
Link.Clicked = True
event Titel.KeyPress(13)
event Titel.Click()
")
if(NOT out STREQUAL expected)
  message(FATAL_ERROR "the example printed:\n${out}\ninstead of:\n${expected}")
endif()
foreach(file start.png hover.png focused.png display.wav)
  if(NOT EXISTS ${OUT}/${file})
    message(FATAL_ERROR "the example did not write ${file}")
  endif()
endforeach()
