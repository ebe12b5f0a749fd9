# What every target of this project shares: standard, warnings, visibility, sanitizers.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

find_program(QCE_CCACHE ccache)
if(QCE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${QCE_CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wunused -Werror)
# GCC 12 sees uninitialised members in every optional or conditional std::variant.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
# Calls inside a library are not open to replacement from outside, so they may be inlined.
add_compile_options(-fno-semantic-interposition)
if(QCE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# The sources of one folder, headers included so that moc sees them.
function(qce_folder_sources out)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB_RECURSE here CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp
         ${CMAKE_SOURCE_DIR}/${folder}/*.h ${CMAKE_SOURCE_DIR}/${folder}/*.qrc)
    list(APPEND found ${here})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# A library of this project: alias equal to the exported name, generated export header.
#   qce_library(NAME SHARED|STATIC EXPORT_HEADER file FOLDERS a b …)
function(qce_library name kind)
  cmake_parse_arguments(ARG "" "EXPORT_HEADER" "FOLDERS" ${ARGN})
  qce_folder_sources(sources ${ARG_FOLDERS})
  add_library(${name} ${kind} ${sources})
  add_library(qce::${name} ALIAS ${name})
  # moc runs again when a list file changed, and the files are globbed: an included list of them
  # makes it see a header that is added later.
  set(listing ${CMAKE_CURRENT_BINARY_DIR}/${name}_sources.cmake)
  list(JOIN sources "\n# " lines)
  file(CONFIGURE OUTPUT ${listing} CONTENT "# ${lines}\n" @ONLY)
  include(${listing})
  target_include_directories(${name} PUBLIC
      $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}> $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/generated>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qce>)
  target_compile_features(${name} PUBLIC cxx_std_17)
  if(ARG_EXPORT_HEADER)
    generate_export_header(${name}
        EXPORT_FILE_NAME ${CMAKE_BINARY_DIR}/generated/${ARG_EXPORT_HEADER})
  endif()
  if(kind STREQUAL "SHARED")
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
                          SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
endfunction()

# Headers, libraries and versioned package files of the embeddable part.
function(qce_install_package)
  include(CMakePackageConfigHelpers)
  install(TARGETS qce_contract qce_host_widgets qce EXPORT qceTargets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY host framework project resitem pooling engineering destructors
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qce FILES_MATCHING PATTERN "*.h")
  install(DIRECTORY ${CMAKE_BINARY_DIR}/generated/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qce
          FILES_MATCHING PATTERN "*.h")
  install(EXPORT qceTargets NAMESPACE qce:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qce)
  configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/qceConfig.cmake.in
      ${CMAKE_BINARY_DIR}/qceConfig.cmake
      INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qce)
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/qceConfigVersion.cmake
      COMPATIBILITY SameMajorVersion)
  install(FILES ${CMAKE_BINARY_DIR}/qceConfig.cmake ${CMAKE_BINARY_DIR}/qceConfigVersion.cmake
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qce)
  install(TARGETS qce-workbench RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()
