#pragma once

/// Allocations of this thread before the one that fails; none fails while it is negative.
extern thread_local int allocationsLeft;
