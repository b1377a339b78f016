# Debian's cross compiler, and the arm64 packages that `./run matrix` unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(LUMENTA_AARCH64_ROOT "" CACHE PATH "Folder with unpacked arm64 packages: Qt and what it needs")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMENTA_AARCH64_ROOT)
set(CMAKE_FIND_ROOT_PATH "${LUMENTA_AARCH64_ROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Libraries of libraries. The system's own are the compiler's.
foreach(folder usr/lib/aarch64-linux-gnu lib/aarch64-linux-gnu)
    string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${LUMENTA_AARCH64_ROOT}/${folder}")
    string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-rpath-link,${LUMENTA_AARCH64_ROOT}/${folder}")
endforeach()
