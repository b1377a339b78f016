// A processor that can do no more than the baseline of x86-64, for a library that is
// linked with this: __builtin_cpu_supports() asks these two, and the linker takes them
// rather than those of the compiler's own library, which ask the processor.
extern "C" {

// What GCC's libgcc and compiler-rt have in common.
struct {
    unsigned int vendor, type, subtype, features[1];
} __cpu_model __attribute__((visibility("hidden"))) = {};

unsigned int __cpu_features2[8] __attribute__((visibility("hidden"))) = {};
}
