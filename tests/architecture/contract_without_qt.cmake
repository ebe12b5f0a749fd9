# Compiles every header of the contract by itself, on the contract's own include path, and looks at
# what it drew in: no Qt header, not even by accident through a system folder.
#
# COMPILER, SOURCE_DIR   as in the build
# INCLUDES               the contract's include path
# LIBRARY                the built contract
# WORK_DIR               room for the sources that are made here

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
set(flags -std=c++17 -Wall -Wextra -Werror -fsyntax-only)
foreach(folder IN LISTS INCLUDES)
  list(APPEND flags -I${folder})
endforeach()

# compile(TEXT): leaves the exit status in rc, the messages in errors, the files read in drawn.
function(compile text)
  file(WRITE ${WORK_DIR}/one.cpp "${text}\n")
  file(WRITE ${WORK_DIR}/one.d "")
  execute_process(COMMAND ${COMPILER} ${flags} -MD -MF ${WORK_DIR}/one.d ${WORK_DIR}/one.cpp
      RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE messages)
  file(READ ${WORK_DIR}/one.d read)
  set(rc ${status} PARENT_SCOPE)
  set(errors "${messages}" PARENT_SCOPE)
  set(drawn "${read}" PARENT_SCOPE)
endfunction()

# Would this test see Qt if it were there?
compile("#if __has_include(<QString>) || __has_include(<QtCore/QString>)\n#error Qt in reach\n#endif")
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the contract's include path reaches Qt: ${INCLUDES}")
endif()
file(WRITE ${WORK_DIR}/qt5/QtCore/qstring.h "")
compile("#include \"${WORK_DIR}/qt5/QtCore/qstring.h\"")
if(NOT drawn MATCHES "/qt5/|/Qt[A-Z]")
  message(FATAL_ERROR "a planted Qt header went unseen in: ${drawn}")
endif()
compile("#include \"host/no_such_header.h\"")
if(rc EQUAL 0)
  message(FATAL_ERROR "the compiler accepts anything")
endif()

set(headers)
foreach(folder base proxy domain abst app)
  file(GLOB_RECURSE found RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/host/${folder}/*.h)
  list(APPEND headers ${found})
endforeach()
set(faults)
foreach(header IN LISTS headers)
  compile("#include \"${header}\"")
  if(NOT rc EQUAL 0)
    list(APPEND faults "${header} does not compile by itself:\n${errors}")
  elseif(NOT drawn MATCHES "${header}")
    list(APPEND faults "${header} was not read")
  elseif(drawn MATCHES "([^ \n]*(/qt5/|/Qt[A-Z])[^ \n]*)")
    list(APPEND faults "${header} draws in ${CMAKE_MATCH_1}")
  endif()
endforeach()

# The library neither needs Qt at run time.
file(STRINGS ${LIBRARY} linked REGEX "libQt[0-9]")
if(linked)
  list(APPEND faults "${LIBRARY} is linked to ${linked}")
endif()

list(LENGTH headers count)
if(count LESS 20)
  message(FATAL_ERROR "only ${count} headers found below ${SOURCE_DIR}/host")
endif()
if(faults)
  list(JOIN faults "\n" text)
  message(FATAL_ERROR "${text}")
endif()
message(STATUS "${count} headers compile without Qt")
