#pragma once

namespace hmi {

/// How the process takes memory and gives it back, where the C library can be told. Before there
/// are threads.
void configureHeap();

}  // namespace hmi
