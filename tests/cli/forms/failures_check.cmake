# Every way a korvex command can fail, as a user meets it: the exit status korvex --help lists,
# exactly one line on standard error saying where (file, script line, control, key), and all
# output printed before the failure still on standard output.
file(REMOVE_RECURSE ${OUT})
file(MAKE_DIRECTORY ${OUT}/folder)
file(WRITE ${OUT}/plain.txt "not a folder\n")
set(buttons ${EXAMPLES}/buttons.json)

# expect(NAME STATUS STDERR_REGEX [STDOUT_REGEX] COMMAND ARGS... [STDIN FILE])
function(expect name status err_regex)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "STDOUT;STDIN" "COMMAND")
  set(input)
  if(arg_STDIN)
    set(input INPUT_FILE ${arg_STDIN})
  endif()
  execute_process(COMMAND ${KORVEX} ${arg_COMMAND} ${input}
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc STREQUAL status)
    message(SEND_ERROR "${name}: exit status ${rc} instead of ${status}\nstderr: ${err}")
  endif()
  if(NOT err MATCHES "${err_regex}")
    message(SEND_ERROR "${name}: stderr does not match '${err_regex}':\n${err}")
  endif()
  if(status STREQUAL "1" OR status STREQUAL "3")
    # One line, ending the stream: "korvex COMMAND: ..."
    if(NOT err MATCHES "^korvex [a-z]+: [^\n]+\n$")
      message(SEND_ERROR "${name}: not one line on stderr:\n${err}")
    endif()
  endif()
  if(arg_STDOUT AND NOT out MATCHES "${arg_STDOUT}")
    message(SEND_ERROR "${name}: stdout does not match '${arg_STDOUT}':\n${out}")
  endif()
endfunction()

file(WRITE ${OUT}/late.txt "move Senden\nclick\nget Senden.Value\nset Nobody.Value 1\nget Senden.Caption\n")
file(WRITE ${OUT}/malformed.txt "move Senden\nclick\nfrobnicate now\n")
file(WRITE ${OUT}/huge.txt "# a coordinate beyond the int range\nmove 99999999999 5\n")
file(WRITE ${OUT}/broken.gdi "canvas 20 20\nLineTo 1\n")
file(WRITE ${OUT}/unknown_object.gdi "canvas 20 20\nSelectObject nowhere\n")
file(WRITE ${OUT}/newline_value.json
  "{ \"Controls\": [ { \"ProgID\": \"Korvex_Tools.Button\", \"Name\": \"B\", \"Width\": 1200, \"Height\": 300,\n"
  "  \"Properties\": { \"OptionMode\": \"one\\ntwo\" } } ] }\n")

# korvex run: a host error of one step is output and the run goes on; what ends a run comes last.
expect(run_step_error 0 "^$" STDOUT
  "event Senden.Click\\(\\)\n.*Senden.Value = True\nerror 424: [^\n]*Nobody\nSenden.Caption = "
  COMMAND run ${buttons} --script ${OUT}/late.txt --out ${OUT}/run)
expect(run_output_before_failure 1 "error 75: [^\n]*${OUT}/folder/no/such/x.wav"
  STDOUT "event Senden.Click\\(\\)\n.*Senden.Value = True\n"
  COMMAND run ${buttons} --script ${OUT}/late.txt --out ${OUT}/run --wav ${OUT}/folder/no/such/x.wav)
expect(run_malformed_line 3 "^korvex run: [^\n]*malformed.txt: line 3: unknown command 'frobnicate'"
  STDOUT "^$" COMMAND run ${buttons} --script ${OUT}/malformed.txt --out ${OUT}/run)
expect(run_malformed_stdin 3 "^korvex run: standard input: line 3: "
  COMMAND run ${buttons} --out ${OUT}/run STDIN ${OUT}/malformed.txt)
expect(run_number_out_of_range 3 "huge.txt: line 2: expected: move X Y"
  COMMAND run ${buttons} --script ${OUT}/huge.txt --out ${OUT}/run)
expect(run_missing_script 1 "^korvex run: error 53: File not found \\([^\n]*missing.txt\\)"
  COMMAND run ${buttons} --script ${OUT}/missing.txt --out ${OUT}/run)
expect(run_folder_as_script 1 "^korvex run: error 75: [^\n]*folder is a folder"
  COMMAND run ${buttons} --script ${OUT}/folder --out ${OUT}/run)
expect(run_folder_as_form 1 "^korvex run: error 75: [^\n]*folder is a folder"
  COMMAND run ${OUT}/folder --script ${OUT}/late.txt --out ${OUT}/run)
expect(run_missing_form 1 "^korvex run: error 53: "
  COMMAND run ${OUT}/missing.json --script ${OUT}/late.txt --out ${OUT}/run)
expect(run_file_as_output_folder 1 "^korvex run: error 75: [^\n]*plain.txt is not a folder"
  COMMAND run ${buttons} --script ${OUT}/late.txt --out ${OUT}/plain.txt)
expect(run_unknown_option 2 "usage: korvex run" COMMAND run ${buttons} --frob)
expect(run_no_form 2 "usage: korvex run" COMMAND run)

# A value with a line break in it is shown escaped: the error stays one line and names the
# file, the control, the key and the value.
expect(bag_value_with_line_break 1
  "error 13: [^\n]*newline_value.json[^\n]*B[^\n]*OptionMode[^\n]*one\\\\ntwo"
  COMMAND bag ${OUT}/newline_value.json)
expect(bag_folder 1 "^korvex bag: error 75: " COMMAND bag ${OUT}/folder)
expect(bag_no_form 2 "usage: korvex bag" COMMAND bag)

expect(render_no_output 2 "usage: korvex render" COMMAND render ${buttons})
expect(render_extra_argument 2 "usage: korvex render" COMMAND render ${buttons} other.json -o ${OUT}/x.png)
expect(render_unwritable 1 "^korvex render: error 75: [^\n]*no/such/x.png"
  COMMAND render ${buttons} -o ${OUT}/folder/no/such/x.png)

expect(gdi_malformed_line 3 "^korvex gdi: [^\n]*broken.gdi: line 2: " COMMAND gdi ${OUT}/broken.gdi)
expect(gdi_unknown_object 3 "^korvex gdi: [^\n]*unknown_object.gdi: line 2: no object named 'nowhere'"
  COMMAND gdi ${OUT}/unknown_object.gdi)
expect(gdi_missing_script 1 "^korvex gdi: error 53: " COMMAND gdi ${OUT}/missing.gdi)
expect(gdi_folder_as_script 1 "^korvex gdi: error 75: [^\n]*folder is a folder" COMMAND gdi ${OUT}/folder)
expect(gdi_no_script 2 "no script given" COMMAND gdi)

expect(gallery_unknown_option 2 "usage: korvex gallery" COMMAND gallery --frob)
expect(gallery_file_as_folder 1 "^korvex gallery: error 75: [^\n]*plain.txt"
  COMMAND gallery --out ${OUT}/plain.txt)
expect(members_unknown_class 2 "no class 'Korvex_Tools.Unknown'" COMMAND members Korvex_Tools.Unknown)
expect(members_file_as_folder 1 "^korvex members: error 75: [^\n]*plain.txt"
  COMMAND members --all --out ${OUT}/plain.txt)
expect(unknown_command 2 "unknown command 'frobnicate'" COMMAND frobnicate)
