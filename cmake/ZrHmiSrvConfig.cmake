# The target ZrHmiSrv::ZrHmiSrvExt: what an extension of the HMI server is built with.
include(CMakeFindDependencyMacro)
find_dependency(Boost 1.81)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/ZrHmiSrvTargets.cmake)
