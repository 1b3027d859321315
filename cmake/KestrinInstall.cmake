# What `cmake --install` puts where a host developer finds it: the libraries with their headers
# under include/kestrin (a host writes #include <kestrin/IClass.h>), KestrinConfig.cmake with the
# targets Kestrin::Core and Kestrin::Widgets, the Designer plugin, the command-line tool and the
# demo host.
if(WIN32 AND KESTRIN_WIDGETS)
  include(${CMAKE_CURRENT_LIST_DIR}/KestrinWindowsPackage.cmake)
  return()
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(kestrin_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrin)
set(kestrin_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/kestrin)

set_target_properties(kestrin-core PROPERTIES EXPORT_NAME Core)
set_target_properties(kestrin_warnings PROPERTIES EXPORT_NAME Warnings)
set(kestrin_exported kestrin-core kestrin_warnings)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/core/ DESTINATION ${kestrin_include_dir} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/src/core/generated/BuildVersion.h DESTINATION ${kestrin_include_dir}/base)

if(TARGET kestrin-widgets)
  set_target_properties(kestrin-widgets PROPERTIES EXPORT_NAME Widgets)
  list(APPEND kestrin_exported kestrin-widgets)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/widgets/ DESTINATION ${kestrin_include_dir} FILES_MATCHING PATTERN "*.h")
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/IClass.h DESTINATION ${kestrin_include_dir})
endif()
if(TARGET kestrin-designer)
  install(TARGETS kestrin-designer LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/qt6/plugins/designer)
endif()
foreach(program kestrin kestrin-host)
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

# The demo host's sample project, layouts, catalog and scripts.
if(TARGET kestrin-host)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/kestrin/examples)
endif()

install(TARGETS ${kestrin_exported} EXPORT KestrinTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} INCLUDES DESTINATION ${kestrin_include_dir})
install(EXPORT KestrinTargets NAMESPACE Kestrin:: DESTINATION ${kestrin_cmake_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestrinConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/KestrinConfig.cmake INSTALL_DESTINATION ${kestrin_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestrinConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestrinConfig.cmake ${PROJECT_BINARY_DIR}/KestrinConfigVersion.cmake
        DESTINATION ${kestrin_cmake_dir})
