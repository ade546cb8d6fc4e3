# Fails when an include arrow turns back: support <- lib <- programs/io <- programs <- tools, and
# between the wings of lib. programs/files sees nothing of ours. Among the tools text <- import,
# text <- run and text <- export, and nothing between the three; cluster sees import and run, and
# sweep run and cluster. Programs and tools see the library through lib/molva.h and lib/support/
# only; programs/io also sees run_params.h. The Python extension sees the library and the reader.
#   cmake -DSOURCE_DIR=... -P CheckIncludes.cmake

set(offences "")

# check(FOLDER PATTERN ALLOWED): includes of ours in FOLDER's own files must match ALLOWED.
function(check folder allowed)
  file(GLOB sources "${SOURCE_DIR}/${folder}/*.h" "${SOURCE_DIR}/${folder}/*.cc")
  foreach(source IN LISTS sources)
    file(STRINGS "${source}" includes REGEX "^#include \"")
    foreach(include IN LISTS includes)
      if(NOT include MATCHES "\"${allowed}\"")
        string(APPEND offences "${source}: ${include}\n")
      endif()
    endforeach()
  endforeach()
  set(offences "${offences}" PARENT_SCOPE)
endfunction()

# wing(NAME WINGS...): what a wing of lib includes besides itself. All see the codes.
function(wing name)
  list(JOIN ARGV "|" wings)
  check(lib/${name} "lib/((${wings})/[a-z0-9_]+|molva_(blocks|codes))\\.h")
  set(offences "${offences}" PARENT_SCOPE)
endfunction()

wing(support)
wing(matrix support)
wing(criteria support matrix)
wing(rough support matrix criteria)
wing(partition support matrix criteria rough)
wing(tree support matrix criteria rough)
wing(measure support matrix criteria tree)
wing(blocks support matrix criteria)
# The entry points see all wings; molva.h finds its other half beside it.
check(lib "(lib/([a-z]+/)?[a-z0-9_]+|molva_(blocks|codes))\\.h")
check(programs/files "programs/files/[a-z0-9_]+\\.h")
check(programs/io "(lib/molva\\.h|lib/support/[a-z0-9_]+\\.h|programs/(io|files)/[a-z0-9_]+\\.h|programs/run_params\\.h)")
set(seen_by_tools "lib/molva\\.h|lib/support/[a-z0-9_]+\\.h|programs/((io|files)/)?[a-z0-9_]+\\.h")
check(programs "(${seen_by_tools})")
check(tools "(${seen_by_tools})")
check(tools/text "(lib/support|programs/files|tools/text)/[a-z0-9_]+\\.h")
check(tools/import "(${seen_by_tools}|tools/(text|import)/[a-z0-9_]+\\.h)")
check(tools/run "(${seen_by_tools}|tools/(text|run)/[a-z0-9_]+\\.h)")
check(tools/cluster "(${seen_by_tools}|tools/(text|import|run|cluster)/[a-z0-9_]+\\.h)")
check(tools/sweep "(${seen_by_tools}|tools/(text|run|cluster|sweep)/[a-z0-9_]+\\.h)")
check(tools/export "(${seen_by_tools}|tools/(text|export|export/measures|export/page)/[a-z0-9_]+\\.h)")
check(tools/export/measures "(${seen_by_tools}|tools/export/measures/[a-z0-9_]+\\.h)")
check(tools/export/page "(${seen_by_tools}|tools/(text|export|export/measures|export/page)/[a-z0-9_]+\\.h)")
check(python "(lib/molva\\.h|lib/support/[a-z0-9_]+\\.h|(programs/io|python)/[a-z0-9_]+\\.h)")

if(offences)
  message(FATAL_ERROR "Includes that go the wrong way:\n${offences}")
endif()
