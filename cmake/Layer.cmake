# vesko_options: what every target of this project is compiled with.
add_library(vesko_options INTERFACE)
target_compile_options(
  vesko_options INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor
                          -Woverloaded-virtual -Wimplicit-fallthrough)
# GCC 12 sees an overlap in every optimised sum of a literal and a string; its bug 105651.
target_compile_options(vesko_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# Mail comes from strangers, so what an overrun could reach is guarded: stack frames, addresses, the
# tables of called functions. The C library's checked functions need an optimising compiler.
include(CheckPIESupported)
check_pie_supported()
target_compile_options(vesko_options INTERFACE -fstack-protector-strong)
target_link_options(vesko_options INTERFACE -fstack-protector-strong)  # for the library that it takes
if(NOT VESKO_SANITIZE)
  target_compile_options(
    vesko_options
    INTERFACE
      "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
if(NOT WIN32)
  target_link_options(vesko_options INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
else()
  # The compiler brings the library of the guards by the same option.
  target_link_options(vesko_options INTERFACE -fstack-protector-strong
                                              LINKER:--dynamicbase,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(vesko_options INTERFACE LINKER:--high-entropy-va)
  endif()
endif()
if(VESKO_SANITIZE)
  target_compile_options(vesko_options INTERFACE -fsanitize=address,undefined
                                                 -fno-sanitize-recover=undefined
                                                 -fno-omit-frame-pointer)
  target_link_options(vesko_options INTERFACE -fsanitize=address,undefined)
endif()
if(VESKO_FUZZ)
  # Coverage everywhere, the fuzzer's main function in the targets of fuzz/ only.
  target_compile_options(vesko_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                                                 -fno-sanitize-recover=undefined
                                                 -fno-omit-frame-pointer)
  target_link_options(vesko_options INTERFACE -fsanitize=address,undefined)
endif()

# vesko_layer(<name> SOURCES <file>... [USES <layer>...]): a folder below src/ as a static library.
# Sources include the headers of other layers as "layer/Header.h"; USES names the layers that the
# folder may know, which is how a forbidden include shows up as a link or review error.
function(vesko_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;USES" ${ARGN})
  add_library(vesko_${name} STATIC ${LAYER_SOURCES})
  target_include_directories(vesko_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(vesko_${name} PRIVATE vesko_options)
  set_property(GLOBAL APPEND PROPERTY VESKO_LAYERS vesko_${name})
  foreach(used IN LISTS LAYER_USES)
    target_link_libraries(vesko_${name} PUBLIC vesko_${used})
  endforeach()
endfunction()
