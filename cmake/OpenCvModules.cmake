# The four modules of OpenCV that are used, as targets opencv::NAME. Not by OpenCV's own package file: that one insists on
# every module of the library, a gigabyte of packages.
find_path(OPENCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
foreach(module core imgproc imgcodecs videoio)
  find_library(OPENCV_${module}_LIBRARY opencv_${module} REQUIRED)
  add_library(opencv::${module} INTERFACE IMPORTED)
  set_target_properties(opencv::${module} PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES ${OPENCV_INCLUDE_DIR} INTERFACE_LINK_LIBRARIES ${OPENCV_${module}_LIBRARY})
endforeach()
