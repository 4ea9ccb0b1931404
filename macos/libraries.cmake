# Links a program with every library of imports.txt, used by name or not: a class is found at run time only in what is
# loaded.
function(link_all_libraries program)
  file(STRINGS ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/imports.txt libraries REGEX "^[A-Za-z]+ ")
  foreach(line ${libraries})
    string(REGEX REPLACE " .*" "" name "${line}")
    if(line MATCHES "\\.framework/")
      target_link_libraries(${program} PRIVATE "-framework ${name}")
    else()
      target_link_libraries(${program} PRIVATE -l${name})
    endif()
  endforeach()
endfunction()
