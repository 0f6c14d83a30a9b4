# Builds one database from its SQL source:
#   cmake -DSHELL=sqlite3 -DSQL=blank.sql -DDATABASE=blank.mdb -P BuildDatabase.cmake
# The database appears under its name only when it is whole, so that an interrupted build leaves no
# half of one behind.
set(unfinished "${DATABASE}.new")
file(REMOVE "${unfinished}" "${unfinished}-journal")
execute_process(
  COMMAND "${SHELL}" -batch -bail "${unfinished}"
  INPUT_FILE "${SQL}"
  OUTPUT_VARIABLE said
  ERROR_VARIABLE said
  RESULT_VARIABLE failed)
if(failed)
  file(REMOVE "${unfinished}")
  message(FATAL_ERROR "${SQL}: ${said}")
endif()
execute_process(
  COMMAND "${SHELL}" -batch "${unfinished}" "PRAGMA integrity_check"
  OUTPUT_VARIABLE verdict
  OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
if(NOT verdict STREQUAL "ok")
  file(REMOVE "${unfinished}")
  message(FATAL_ERROR "${DATABASE}: ${verdict}")
endif()
file(RENAME "${unfinished}" "${DATABASE}")
