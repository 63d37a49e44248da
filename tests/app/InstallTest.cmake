# Installs the build tree into an empty prefix and checks that the installed
# programs start and find their resources there (not in the build tree).
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -P InstallTest.cmake
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
file(MAKE_DIRECTORY ${WORK_DIR}/runtime ${WORK_DIR}/library)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(run_output "${out}${err}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

foreach(f bin/quillo bin/quillo-cli share/quillo/sounds/noimagesound.jpg share/quillo/sounds/Kick.wav
          share/applications/app.quillo.Quillo.desktop share/metainfo/app.quillo.Quillo.metainfo.xml)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
if(DESKTOP_FILE_VALIDATE)
  run(${DESKTOP_FILE_VALIDATE} ${prefix}/share/applications/app.quillo.Quillo.desktop)
endif()
find_program(APPSTREAMCLI appstreamcli)
if(APPSTREAMCLI)
  run(${APPSTREAMCLI} validate --no-net ${prefix}/share/metainfo/app.quillo.Quillo.metainfo.xml)
endif()

set(env ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen QUILLO_AUDIO=null
    XDG_RUNTIME_DIR=${WORK_DIR}/runtime XDG_CONFIG_HOME=${WORK_DIR}/config XDG_STATE_HOME=${WORK_DIR}/state
    ASAN_OPTIONS=detect_leaks=0)

# The window starts on a new library and shows its screens.
run(${env} ${prefix}/bin/quillo --library ${WORK_DIR}/library --screenshot ${WORK_DIR}/shots)
if(NOT EXISTS ${WORK_DIR}/shots/window-loops-list.png)
  message(FATAL_ERROR "the installed quillo showed no window:\n${run_output}")
endif()

# A built-in loop renders from the installed sounds: the file is not silent.
run(${env} ${prefix}/bin/quillo-cli --library ${WORK_DIR}/library render loop "Easy beat 95" -o ${WORK_DIR}/easy.wav)
file(SIZE ${WORK_DIR}/easy.wav size)
file(READ ${WORK_DIR}/easy.wav samples OFFSET 20000 LIMIT 4000 HEX)
string(REGEX REPLACE "0" "" nonzero "${samples}")
if(size LESS 100000 OR nonzero STREQUAL "")
  message(FATAL_ERROR "the installed quillo-cli rendered silence (${size} bytes):\n${run_output}")
endif()
