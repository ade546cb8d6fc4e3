# Writes the completion of a tool's command line for a shell, from the options that its help lists:
#   cmake -DPROGRAM=... -DSHELL=bash|zsh -DOUTPUT=... -DMARDLE_OPTIONS=FILE -DTAKEN=NAMES
#     -P WriteCompletion.cmake
# In a tool with formats, each of which has its help, the options go by the format. MARDLE_OPTIONS
# lists the options of mardle with their values, of which the tool takes those called in TAKEN.
cmake_minimum_required(VERSION 3.25)
get_filename_component(name "${PROGRAM}" NAME)

# What the help does not list. A test runs the tools with each of these values.
set(languages "chinese danish dutch english french german italian japanese norwegian portuguese")
string(APPEND languages " russian spanish swedish")
set(values_of_--delimiter "tab")
set(values_of_--encoding "utf-8 utf-16 latin1 latin2 windows-1252 koi8-r shift_jis euc-jp gb18030 big5")
set(values_of_--format "mtx svmlight table lines npy npz")
set(values_of_--missing "drop mean median zero")
set(values_of_--more-stop-words "${languages}")
set(values_of_--stem "arabic armenian basque catalan danish dutch english finnish french german greek")
string(APPEND values_of_--stem " hindi hungarian indonesian irish italian lithuanian nepali norwegian")
string(APPEND values_of_--stem " porter portuguese romanian russian serbian spanish swedish tamil")
string(APPEND values_of_--stem " turkish yiddish")
set(values_of_--stop-words "none ${languages}")

function(help_of result)
  execute_process(COMMAND "${PROGRAM}" ${ARGN} --help OUTPUT_VARIABLE help
    COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE ";" "," help "${help}")
  set(${result} "${help}" PARENT_SCOPE)
endfunction()

# understand(LINE): sets option, has_value, words (its values) and paths (-f files, -d folders).
function(understand line)
  string(REGEX MATCH "^ +(--[a-z-]+) ?([^ ]*)(.*)$" ignored "${line}")
  set(option "${CMAKE_MATCH_1}")
  set(kind "${CMAKE_MATCH_2}")
  set(rest "${CMAKE_MATCH_3}")
  set(has_value OFF)
  set(words "${values_of_${option}}")
  set(paths "")
  # What takes a value has its kind in capitals behind it, or the values themselves.
  if(kind MATCHES "^([a-z|]+):{")
    set(has_value ON)
    string(REPLACE "|" " " words "${CMAKE_MATCH_1}")
  elseif(kind MATCHES "^[A-Z|]+(:|$)")
    set(has_value ON)
  endif()
  if(rest MATCHES "in \\[1 - ([1-9])\\]")
    foreach(number RANGE 1 ${CMAKE_MATCH_1})
      string(APPEND words " ${number}")
    endforeach()
    string(STRIP "${words}" words)
  endif()
  if(has_value AND kind MATCHES "FILE")
    set(paths -f)
  elseif(has_value AND kind MATCHES "FOLDER")
    set(paths -d)
  endif()
  foreach(variable IN ITEMS option has_value words paths)
    set(${variable} "${${variable}}" PARENT_SCOPE)
  endforeach()
endfunction()

# collect(): the options of `help` into `offered`, what completes their values into `cases`, and both
# as zsh has them into `zsh_lines`.
macro(collect)
  set(offered "")
  string(REGEX MATCHALL "\n +--[a-z-]+[^\n]*" lines "${help}")
  foreach(line IN LISTS lines)
    string(STRIP "${line}" line)
    understand(" ${line}")
    string(APPEND offered " ${option}")
    complete_value("${option}=")
  endforeach()
  string(STRIP "${offered}" offered)
endmacro()

# complete_value(ZSH): a case of bash and a line of zsh for the option that was understood, which zsh
# calls so when it has a value. Several formats may have it.
macro(complete_value zsh)
  set(zsh_line "  '${option}' \\\n")
  if(has_value)
    set(bash_case "    ${option}) words=\"${words}\" paths=${paths} ;;\n")
    if(words AND paths)
      set(places ":value:{compadd ${words}; _files}")
    elseif(words)
      set(places ":value:(${words})")
    elseif(paths STREQUAL "-d")
      set(places ":folder:_files -/")
    elseif(paths)
      set(places ":file:_files")
    else()
      set(places ":value: ")
    endif()
    set(zsh_line "  '*${zsh}${places}' \\\n")
    string(FIND "${cases}" "    ${option}) " known)
    if(known EQUAL -1)
      string(APPEND cases "${bash_case}")
    endif()
  endif()
  string(FIND "${zsh_lines}" "${zsh_line}" known)
  if(known EQUAL -1)
    string(APPEND zsh_lines "${zsh_line}")
  endif()
endmacro()

set(cases "")
set(zsh_lines "")
set(formats "")
help_of(help)
if(help MATCHES "\nSubcommands:\n([^\n]+\n)+")
  string(REGEX MATCHALL "\n  [a-z]+" formats "${CMAKE_MATCH_0}")
endif()
collect()
set(choose "  local offered=\"${offered}\"\n")
if(formats)
  list(TRANSFORM formats STRIP)
  list(JOIN formats " " formats_text)
  string(APPEND choose "  case \${COMP_WORDS[1]} in\n")
  foreach(format IN LISTS formats)
    help_of(help ${format})
    collect()
    string(APPEND choose "    ${format}) offered=\"${offered}\" ;;\n")
  endforeach()
  string(APPEND choose "  esac\n")
endif()

# Options of mardle have their values behind =.
if(TAKEN)
  file(STRINGS "${MARDLE_OPTIONS}" lines)
  set(of_mardle "")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "^-([a-z]+)(=?) ?(.*)$" ignored "${line}")
    set(option "-${CMAKE_MATCH_1}")
    if(NOT CMAKE_MATCH_1 IN_LIST TAKEN)
      continue()
    endif()
    set(has_value OFF)
    if(CMAKE_MATCH_2)
      set(has_value ON)
    endif()
    set(words "${CMAKE_MATCH_3}")
    set(paths "")
    if(words STREQUAL "FILE")
      set(words "")
      set(paths -f)
    endif()
    string(APPEND of_mardle " ${option}${CMAKE_MATCH_2}")
    complete_value("${option}=-")
  endforeach()
  string(APPEND choose "  offered+=\"${of_mardle}\"\n")
endif()

if(SHELL STREQUAL "bash")
  string(REPLACE "-" "_" function "_${name}")
  set(first "")
  if(formats)
    set(first "  if ((COMP_CWORD == 1)) && [[ $word != -* ]]; then\n    words=\"${formats_text}\" paths=\n  fi\n")
  endif()
  set(text "# Completion of ${name}'s command line.
${function}() {
  local word=\${COMP_WORDS[COMP_CWORD]} before=\${COMP_WORDS[COMP_CWORD - 1]} option= words= paths=-f
${choose}  # An option, = and its value are three words.
  if [[ $word == \"=\" ]]; then
    option=$before word=
  elif [[ $before == \"=\" ]]; then
    option=\${COMP_WORDS[COMP_CWORD - 2]}
  elif [[ $before == --* ]]; then
    option=$before
  fi
  case $option in
${cases}    *) [[ $word == -* ]] && words=$offered paths= ;;
  esac
${first}  mapfile -t COMPREPLY < <(compgen \${words:+-W \"$words\"} $paths -- \"$word\")
  [[ \${COMPREPLY[0]} == *= ]] && compopt -o nospace 2> /dev/null
  return 0
}
complete -o filenames -F ${function} ${name}
")
else()
  set(arguments "  '*:file:_files'\n")
  if(formats)
    set(arguments "  '1:format:(${formats_text})'\n")
  endif()
  set(text "#compdef ${name}\n_arguments \\\n${zsh_lines}${arguments}")
endif()
file(WRITE "${OUTPUT}" "${text}")
