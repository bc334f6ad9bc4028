# Run by `cmake --install` (component "python"): stages the Python package in
# the build tree, so that setuptools' build folders stay out of the sources,
# records in it the library directory of the install prefix, so that the
# installed package finds the library without settings, and pip-installs it.
# Given: PELMORA_PYTHON_SOURCE, PELMORA_PYTHON_STAGE, PELMORA_PYTHON,
# PELMORA_LIBRARY_DIR.
if(DEFINED ENV{PELMORA_PYTHON} AND NOT "$ENV{PELMORA_PYTHON}" STREQUAL "")
  set(PELMORA_PYTHON "$ENV{PELMORA_PYTHON}")
endif()
if(NOT PELMORA_PYTHON)
  message(FATAL_ERROR "No Python interpreter to install the Python package with: set PELMORA_PYTHON")
endif()

file(REMOVE_RECURSE "${PELMORA_PYTHON_STAGE}")
file(COPY "${PELMORA_PYTHON_SOURCE}/pyproject.toml" "${PELMORA_PYTHON_SOURCE}/pelmora"
  DESTINATION "${PELMORA_PYTHON_STAGE}" PATTERN __pycache__ EXCLUDE)
string(REPLACE "\\" "\\\\" library_dir "${PELMORA_LIBRARY_DIR}")
string(REPLACE "\"" "\\\"" library_dir "${library_dir}")
file(WRITE "${PELMORA_PYTHON_STAGE}/pelmora/_installed.py"
  "# Written by cmake --install: the directory it installed libPelmora64 in.\nLIBRARY_DIR = \"${library_dir}\"\n")

message(STATUS "Installing the Python package into the environment of ${PELMORA_PYTHON}")
execute_process(
  COMMAND "${PELMORA_PYTHON}" -m pip install --quiet --no-build-isolation --no-index --no-deps
          --force-reinstall "${PELMORA_PYTHON_STAGE}"
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "pip could not install the Python package into the environment of ${PELMORA_PYTHON}: "
    "it needs pip, setuptools and wheel there (Debian: python3-venv, python3-setuptools, python3-wheel; "
    "a venv made with --system-site-packages)")
endif()
