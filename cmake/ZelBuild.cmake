# Settings that every target shares, and the two functions that make plug-ins.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Assertions stay on in every build: NDEBUG is never defined.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g")
set(CMAKE_C_FLAGS_RELEASE "-O2 -g")

find_program(ZEL_CCACHE ccache)
if(ZEL_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${ZEL_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZEL_CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -fstack-protector-strong
                    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
                    $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
                    $<$<CONFIG:Release>:-fno-semantic-interposition>
                    $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
add_link_options(-Wl,-z,relro -Wl,-z,now)
if(ZEL_WERROR)
  add_compile_options(-Werror)
endif()
if(ZEL_SANITIZE)
  # Instrumented code takes GCC's mind off what has been set: it warns of the standard library's.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
  add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEL_SANITIZE})
endif()

# zel_add_plugin(TARGET NAME DIRECTORY SOURCES...): builds DIRECTORY/NAME/libNAME.pi.so.
function(zel_add_plugin target name directory)
  add_library(${target} MODULE ${ARGN})
  set_target_properties(${target} PROPERTIES
    PREFIX "lib" OUTPUT_NAME ${name} SUFFIX ".pi.so"
    LIBRARY_OUTPUT_DIRECTORY ${directory}/${name})
  target_link_libraries(${target} PRIVATE zelcore)
endfunction()

# zel_copy_document(TARGET DOCUMENT DIRECTORY): keeps a copy of a document beside the built plug-in.
function(zel_copy_document target document directory)
  get_filename_component(file ${document} NAME)
  add_custom_command(OUTPUT ${directory}/${file}
    COMMAND ${CMAKE_COMMAND} -E copy ${document} ${directory}/${file}
    DEPENDS ${document} VERBATIM)
  add_custom_target(${target}-document ALL DEPENDS ${directory}/${file})
  add_dependencies(${target} ${target}-document)
endfunction()
