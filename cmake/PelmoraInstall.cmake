# Install rules: the shared library with its SONAME links, the public headers
# under include/pelmora64/, the pelmora tool when it is part of the build, a
# CMake package (find_package(Pelmora64 CONFIG) -> Pelmora64::Pelmora64) and
# a pkg-config file. Both package descriptions are relocatable: they find the
# prefix from their own location, so an installed tree may be moved or
# installed with `cmake --install --prefix`.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(PELMORA_INCLUDE_SUBDIR pelmora64)
set(PELMORA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Pelmora64)

# The C++ umbrella header and everything it reaches. The list is explicit so
# that an exported header which starts to include an internal one fails the
# install test instead of silently shipping the internal header.
set(PELMORA_PUBLIC_CXX_HEADERS
  values/RTTI.h values/BaseValue.h values/IntValue.h values/FloatValue.h
  values/RefFloatValue.h values/Vector3Value.h values/ValueArithmetic.h
  values/ValuesTable.h values/IdentifyValues.h
  gesture/Qualification.h gesture/Segment.h gesture/Gesture.h gesture/GestureTable.h
  processing/BaseFunction.h processing/OneVariablesFunction.h
  processing/TwoVariablesFunction.h processing/Processing.h processing/ProcessingTable.h
  config/QualificationConfig.h config/SegmentConfig.h config/GestureConfig.h
  config/GestureConfigTable.h config/FunctionConfig.h config/ProcessingConfig.h
  config/ProcessingConfigTable.h config/GestureConfigManager.h
  engine/CriticalSection.h engine/FrameRateCounter.h engine/WakeEvent.h engine/Pelmora.h
  engine/ThreadCommand.h engine/TCResetGesture.h engine/TCSetGestureState.h
  engine/TCSetPlayerState.h
  player/MulBuffer.h player/PlayerGestureInfo.h player/Player.h)

install(TARGETS Pelmora64 EXPORT Pelmora64Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PELMORA_INCLUDE_SUBDIR})

install(FILES include/pelmora.h include/PelmoraExport.h include/pelmora.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PELMORA_INCLUDE_SUBDIR})
foreach(header IN LISTS PELMORA_PUBLIC_CXX_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PELMORA_INCLUDE_SUBDIR}/${folder})
endforeach()

# The tool arrives with tools/; it finds the library beside its own prefix.
if(TARGET pelmora)
  set_target_properties(pelmora PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS pelmora RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT Pelmora64Targets NAMESPACE Pelmora64:: DESTINATION ${PELMORA_CMAKE_DIR})
configure_package_config_file(cmake/Pelmora64Config.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/Pelmora64Config.cmake
  INSTALL_DESTINATION ${PELMORA_CMAKE_DIR})
# The SONAME carries the major version, so the package promises no more.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/Pelmora64ConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Pelmora64Config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/Pelmora64ConfigVersion.cmake
  DESTINATION ${PELMORA_CMAKE_DIR})

# pkg-config: the prefix is derived from the .pc file's own folder.
file(RELATIVE_PATH PELMORA_PC_TO_PREFIX
  /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" PELMORA_PC_TO_PREFIX "${PELMORA_PC_TO_PREFIX}")
configure_file(cmake/pelmora64.pc.in ${CMAKE_CURRENT_BINARY_DIR}/pelmora64.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pelmora64.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The Python package (python/, pure ctypes) installs with pip into the
# environment of an interpreter, offline and without build isolation: the
# interpreter's own setuptools and wheel build it (Debian's, in a venv made
# with --system-site-packages). It is the install component "python", part
# of a plain `cmake --install` only with PELMORA_INSTALL_PYTHON. The
# interpreter is $PELMORA_PYTHON at install time, else the cache variable.
file(STRINGS ${PROJECT_SOURCE_DIR}/python/pyproject.toml PELMORA_PYTHON_VERSION_LINE REGEX "^version = ")
if(NOT PELMORA_PYTHON_VERSION_LINE STREQUAL "version = \"${PROJECT_VERSION}\"")
  message(FATAL_ERROR "python/pyproject.toml says '${PELMORA_PYTHON_VERSION_LINE}' but the library is "
    "${PROJECT_VERSION}: the package carries the library's version")
endif()
option(PELMORA_INSTALL_PYTHON "cmake --install also pip-installs the Python package" OFF)
find_package(Python3 COMPONENTS Interpreter)
set(PELMORA_PYTHON "${Python3_EXECUTABLE}" CACHE FILEPATH
  "Interpreter whose environment cmake --install puts the Python package in")
if(PELMORA_INSTALL_PYTHON)
  set(PELMORA_PYTHON_IN_ALL "")
else()
  set(PELMORA_PYTHON_IN_ALL EXCLUDE_FROM_ALL)
endif()
install(CODE "
  set(PELMORA_PYTHON_SOURCE \"${PROJECT_SOURCE_DIR}/python\")
  set(PELMORA_PYTHON_STAGE \"${CMAKE_CURRENT_BINARY_DIR}/python-package\")
  set(PELMORA_PYTHON \"${PELMORA_PYTHON}\")
  set(PELMORA_LIBRARY_DIR \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\")
  include(\"${PROJECT_SOURCE_DIR}/cmake/InstallPythonPackage.cmake\")"
  COMPONENT python ${PELMORA_PYTHON_IN_ALL})
