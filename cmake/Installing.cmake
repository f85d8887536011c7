# What cmake --install puts where, and how a program or a library joins in. Nothing of it
# holds the prefix: programs find share/ from their own place, pkg-config and
# find_package from that of their files.
set(VELDRIN_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
  "Where zsh's completions are installed")
set(VELDRIN_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/veldrin)

if(VELDRIN_INSTALL)
  add_custom_target(installed) # builds all that is installed and nothing else
endif()

# veldrin_way(<result> <from> <to>): the way from one installed folder to another.
function(veldrin_way result from to)
  foreach(end from to)
    cmake_path(ABSOLUTE_PATH ${end} BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
  endforeach()
  file(RELATIVE_PATH way ${from} ${to})
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${result} ${way} PARENT_SCOPE)
endfunction()

if(BUILD_SHARED_LIBS)
  veldrin_way(way ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR})
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${way}")
endif()

# veldrin_library(<target> <sources>...
#     SUMMARY <text> [NEEDS <target>...] [LINKS <library>...] [PRIVATE_HEADERS <file>...])
# A library for others too: Veldrin::<target> for CMake, veldrin-<target> in small letters
# for pkg-config. Its headers are those named <target>_*.h and the private ones that these
# include.
function(veldrin_library target)
  cmake_parse_arguments(PARSE_ARGV 1 "" "" "SUMMARY" "NEEDS;LINKS;PRIVATE_HEADERS")
  add_library(${target} ${_UNPARSED_ARGUMENTS})
  add_library(Veldrin::${target} ALIAS ${target})
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_compile_definitions(${target} PUBLIC ${VELDRIN_DEFINITIONS})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${VELDRIN_HEADERS}>)
  target_link_libraries(${target} PUBLIC ${_NEEDS}
    PRIVATE ${_LINKS} $<BUILD_INTERFACE:veldrin_options>)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  if(VELDRIN_INSTALL)
    veldrin_install_library(${target})
  endif()
endfunction()

# Of veldrin_library: the files of one library.
macro(veldrin_install_library target)
  add_dependencies(installed ${target})
  install(TARGETS ${target} EXPORT Veldrin
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  file(GLOB headers CONFIGURE_DEPENDS ${target}_*.h)
  install(FILES ${headers} ${_PRIVATE_HEADERS} DESTINATION ${VELDRIN_HEADERS}/${target})

  string(TOLOWER ${target} name)
  list(TRANSFORM _NEEDS PREPEND veldrin- OUTPUT_VARIABLE needs)
  string(TOLOWER "${needs}" needs)
  list(TRANSFORM VELDRIN_DEFINITIONS PREPEND -D OUTPUT_VARIABLE definitions)
  list(JOIN definitions " " definitions)
  list(TRANSFORM _LINKS PREPEND -l OUTPUT_VARIABLE links)
  list(JOIN links " " links)
  set(links_private)
  if(BUILD_SHARED_LIBS) # which name what they need themselves
    set(links_private ${links})
    set(links)
  endif()
  veldrin_way(to_prefix ${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  veldrin_way(to_libraries ${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_LIBDIR})
  veldrin_way(to_headers ${CMAKE_INSTALL_LIBDIR}/pkgconfig ${VELDRIN_HEADERS})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in
    ${PROJECT_BINARY_DIR}/pkgconfig/veldrin-${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/veldrin-${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endmacro()

# veldrin_program(<target> SUMMARY <text> [HELP <option>] [FILES <pattern>])
# Installs a program with its manual page and with completion for three shells, which are
# made from what it prints for HELP. FILES are the names that it takes.
function(veldrin_program target)
  if(NOT VELDRIN_INSTALL)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 "" "" "SUMMARY;HELP;FILES" "")
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  set(folder ${PROJECT_BINARY_DIR}/manual/${target})
  set(writer ${PROJECT_SOURCE_DIR}/cmake/write_manual.py)
  add_custom_command(
    OUTPUT ${folder}/${target}.1 ${folder}/${target} ${folder}/_${target} ${folder}/${target}.fish
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${Python3_EXECUTABLE} -B ${writer} "--summary=${_SUMMARY}" "--files=${_FILES}"
      --version=${PROJECT_VERSION} ${folder} ${target}
      ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${target}> ${_HELP}
    DEPENDS ${target} ${writer} VERBATIM)
  add_custom_target(${target}_manual ALL DEPENDS ${folder}/${target}.1)
  add_dependencies(installed ${target}_manual)
  install(FILES ${folder}/${target}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${folder}/${target}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${folder}/_${target} DESTINATION ${VELDRIN_ZSH_DIR})
  install(FILES ${folder}/${target}.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endfunction()

# What find_package reads, and what programs read.
function(veldrin_install_package)
  include(CMakePackageConfigHelpers)
  set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/Veldrin)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/VeldrinConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/VeldrinConfigVersion.cmake DESTINATION ${folder})
  install(EXPORT Veldrin FILE VeldrinConfig.cmake NAMESPACE Veldrin:: DESTINATION ${folder})
  install(DIRECTORY share/veldrin DESTINATION ${CMAKE_INSTALL_DATADIR})
endfunction()
