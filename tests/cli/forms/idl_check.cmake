# Regenerates the type library's IDL into the build tree and compares it with the committed
# docs/korvex_tools.idl: a member table changed without regenerating the IDL fails here.
execute_process(COMMAND ${KORVEX} members --idl ${OUT} RESULT_VARIABLE rc ERROR_VARIABLE err)
if(rc)
  message(FATAL_ERROR "korvex members --idl failed (${rc}): ${err}")
endif()
file(READ ${OUT} now)
file(READ ${COMMITTED} before)
if(NOT now STREQUAL before)
  message(FATAL_ERROR "docs/korvex_tools.idl differs from the member tables (see ${OUT});\n"
    "regenerate it with: build/default/bin/korvex members --idl docs/korvex_tools.idl")
endif()
