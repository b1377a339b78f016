// Included before every source file of this project.
#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "Results are part of the behaviour, those of NaN and infinity too: compile without fast-math options."
#endif
