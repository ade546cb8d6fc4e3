# Writes the completion of a tool's command line for a shell, from the options that its help lists:
#   cmake -DPROGRAM=... -DSHELL=bash|zsh -DOUTPUT=... -P WriteCompletion.cmake
get_filename_component(name "${PROGRAM}" NAME)
execute_process(COMMAND "${PROGRAM}" --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," help "${help}")
string(REGEX MATCHALL "\n +--[a-z-]+[^\n]*" lines "${help}")

set(options "")
foreach(line IN LISTS lines)
  string(REGEX MATCH "--[a-z-]+" option "${line}")
  # What takes a value has its kind in capitals behind it.
  if(line MATCHES "--[a-z-]+ [A-Z|]+( |$)")
    string(APPEND option "=")
  endif()
  list(APPEND options "${option}")
endforeach()

if(SHELL STREQUAL "bash")
  string(REPLACE "-" "_" function "_${name}")
  string(REPLACE ";" " " words "${options}")
  string(REPLACE "=" "" words "${words}")
  set(text "# Completion of ${name}'s command line.
${function}() {
  COMPREPLY=()
  if [[ \${COMP_WORDS[COMP_CWORD]} == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '${words}' -- \"\${COMP_WORDS[COMP_CWORD]}\")
  fi
}
complete -o default -F ${function} ${name}
")
else()
  set(text "#compdef ${name}\n_arguments \\\n")
  foreach(option IN LISTS options)
    if(option MATCHES "=$")
      string(APPEND text "  '*${option}:value:_files' \\\n")
    else()
      string(APPEND text "  '${option}' \\\n")
    endif()
  endforeach()
  string(APPEND text "  '*:file:_files'\n")
endif()
file(WRITE "${OUTPUT}" "${text}")
