include(${CMAKE_CURRENT_LIST_DIR}/OrvaAPI64Targets.cmake)
