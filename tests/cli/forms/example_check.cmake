# Runs the README's worked examples and compares what each prints with what the README shows,
# and checks that each wrote its snapshots.
file(REMOVE_RECURSE ${OUT})
file(MAKE_DIRECTORY ${OUT})

# check_example(NAME EXPECTED_OUTPUT FILES... [-- EXTRA_ARGS...])
function(check_example name expected)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "FILES;ARGS")
  file(MAKE_DIRECTORY ${OUT}/${name})
  execute_process(COMMAND ${KORVEX} run ${EXAMPLES}/${name}.json --script ${EXAMPLES}/${name}.txt
                          --out ${OUT}/${name} ${arg_ARGS}
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc)
    message(FATAL_ERROR "korvex run ${name} failed (${rc}): ${err}")
  endif()
  if(NOT out STREQUAL expected)
    message(FATAL_ERROR "the ${name} example printed:\n${out}\ninstead of:\n${expected}")
  endif()
  foreach(file IN LISTS arg_FILES)
    if(NOT EXISTS ${OUT}/${name}/${file})
      message(FATAL_ERROR "the ${name} example did not write ${file}")
    endif()
  endforeach()
endfunction()

check_example(display "event Link.Hover(0, 0, 1500, 90)
event Link.Click()
changed Link.Clicked
Link.Clicked = True
event Titel.KeyPress(13)
event Titel.Click()
" FILES start.png hover.png focused.png display.wav ARGS --wav ${OUT}/display/display.wav)

check_example(buttons "event Senden.MouseMove(0, 0, 10, 6)
event Senden.MouseDown(1, 0, 10, 6)
changed Senden.Value
event Senden.Click()
event Senden.MouseUp(1, 0, 10, 6)
Senden.Value = True
event Ton.MouseMove(0, 0, 8, 6)
event Ton.MouseDown(1, 0, 8, 6)
changed Ton.Value
event Ton.Click()
Ton.Value = True
event Ton.MouseDown(1, 0, 7, 5)
changed Ton.Value
event Ton.Click()
event Ton.MouseUp(1, 0, 7, 5)
Ton.Value = False
event Links.MouseMove(0, 0, 7, 6)
event Links.Group()
event Links.MouseDown(1, 0, 7, 6)
changed Links.Value
event Links.Click()
changed Mitte.Value
changed Rechts.Value
event Mitte.MouseMove(0, 0, 5, 6)
event Mitte.Group()
event Mitte.MouseDown(1, 0, 5, 6)
changed Mitte.Value
event Mitte.Click()
changed Links.Value
changed Rechts.Value
event Mitte.MouseDown(1, 0, 5, 6)
event Rechts.MouseMove(0, 0, 11, 6)
event Rechts.Group()
event Rechts.MouseDown(1, 0, 11, 6)
changed Rechts.Value
event Rechts.Click()
changed Links.Value
changed Mitte.Value
" FILES start.png hover.png latched.png group.png)
