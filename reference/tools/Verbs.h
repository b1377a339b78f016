#pragma once

#include "reference/tools/CommandLine.h"

namespace Host {

/// Something that the command can do.
struct Verb {
    Manual manual;

    /// Does it. Prints what there is to print.
    /// \throws UsageError, Failure, or an exception of the library
    void (*run)(const Arguments& arguments);
};

Verb InfoVerb();
Verb RenderVerb();
Verb PickVerb();
Verb ClipVerb();
Verb ConvertVerb();
Verb MaterialVerb();
Verb ScriptVerb();

} // namespace Host
