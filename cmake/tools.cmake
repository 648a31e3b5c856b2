# The command-line tool qx: a user of the public interface like any other program.

file(GLOB_RECURSE qx_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/qx/*.cpp)
if(NOT qx_sources)
  return()
endif()

find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)

add_executable(qx ${qx_sources})
target_include_directories(qx PRIVATE ${PROJECT_SOURCE_DIR})
target_compile_definitions(qx PRIVATE QX_VERSION="${PROJECT_VERSION}")
target_link_libraries(
  qx PRIVATE qxfoundation qxfoundation_warnings CLI11::CLI11 nlohmann_json::nlohmann_json
             PkgConfig::QXFOUNDATION_libutf8proc)
file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(qx PROPERTIES CXX_EXTENSIONS OFF INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
install(TARGETS qx COMPONENT tool)

if(EXISTS ${PROJECT_SOURCE_DIR}/tools/qx/qx.1)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/qx/qx.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/tools/qx/completion/qx.bash RENAME qx COMPONENT tool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
# zsh looks for what packages bring in another folder than for what is installed by hand.
install(CODE "
  set(folder site-functions)
  if(CMAKE_INSTALL_PREFIX MATCHES \"/usr$\")
    set(folder vendor-completions)
  endif()
  file(INSTALL \"${PROJECT_SOURCE_DIR}/tools/qx/completion/_qx\"
       DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/zsh/\${folder}\")
" COMPONENT tool)
