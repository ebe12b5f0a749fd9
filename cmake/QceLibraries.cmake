# Libraries that come without a CMake package of their own: spreadsheets, plots.
function(qce_find_library target header library)
  string(TOUPPER ${library} prefix)
  find_path(${prefix}_INCLUDE_DIR ${header} REQUIRED)
  find_library(${prefix}_LIBRARY ${library} REQUIRED)
  add_library(${target} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${${prefix}_LIBRARY}
                        INTERFACE_INCLUDE_DIRECTORIES ${${prefix}_INCLUDE_DIR})
endfunction()

qce_find_library(qce::xlsxwriter xlsxwriter.h xlsxwriter)
qce_find_library(qce::minizip minizip/unzip.h minizip)
qce_find_library(qce::qwt qwt/qwt_plot.h qwt-qt5)
