#pragma once

namespace Host {

/// Readies the toolkit for text in pictures, and for events. Apart from the rest, which needs no
/// such preparation, because it makes a folder for temporary files.
void PrepareToolkit();

} // namespace Host
