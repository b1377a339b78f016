#pragma once

#include <new>

/// Every allocation with `new` in a program that links Allocations.cpp: counted,
/// and failing at will. Libraries and plug-ins that it loads are reached, too.
///
/// Not reached: what allocates with malloc, as Qt's containers and texts do; they
/// end the program by themselves where there is none. Counted but never failing:
/// what Qt's own code asks for, since it does not promise to survive that, and
/// what other threads ask for.
namespace Allocations {

long Count(); ///< So far.
long Live();  ///< Blocks that are not freed yet.

/// Places in a library or plug-in, by a part of its path, whose allocations have failed.
long PlacesFailedIn(const char* strLibrary);

/// From now on the allocation after `nAllowed` more of this thread fails, once.
void FailAfter(long nAllowed);

/// Nothing fails any more.
/// \return whether something has
bool StopFailing();

/// Runs attempt(), with its first allocation failing, then its second, and so on
/// until none is left to fail. After each failure runs afterFailure(isThrown): false
/// where it did not come out as std::bad_alloc, so that the attempt succeeded.
/// \return how many have failed
template <typename Prepare, typename Attempt, typename After>
long FailEach(const Prepare& prepare, const Attempt& attempt, const After& afterFailure)
{
    for (long nAllowed = 0;; ++nAllowed) {
        prepare();
        bool isThrown = false;
        FailAfter(nAllowed);
        try {
            attempt();
        } catch (const std::bad_alloc&) {
            isThrown = true;
        }
        if (!StopFailing()) return nAllowed;
        afterFailure(isThrown);
    }
}

} // namespace Allocations
