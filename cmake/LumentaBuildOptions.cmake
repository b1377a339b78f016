# What every target of this project is compiled with. Linked privately, so that
# nothing of it reaches a client of the installed library.
add_library(lumenta-build-options INTERFACE)

target_compile_options(lumenta-build-options INTERFACE
    # Results are part of the behaviour: a fused multiply-add rounds once where
    # the formula rounds twice.
    -ffp-contract=off
    # Refused rather than undone: whoever asks for it should hear of it.
    -include "${CMAKE_CURRENT_LIST_DIR}/ExactArithmetic.h"
    # Nobody reads errno after sqrtf, and without it the call is one instruction.
    -fno-math-errno
    -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Wcast-align
    -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Wformat=2
    $<$<BOOL:${LUMENTA_WERROR}>:-Werror>)

target_compile_definitions(lumenta-build-options INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS)

if(LUMENTA_SANITIZE)
    target_compile_options(lumenta-build-options INTERFACE
        -fsanitize=${LUMENTA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(lumenta-build-options INTERFACE -fsanitize=${LUMENTA_SANITIZE})
endif()
if(LUMENTA_COVERAGE)
    target_compile_options(lumenta-build-options INTERFACE --coverage)
    target_link_options(lumenta-build-options INTERFACE --coverage)
endif()
