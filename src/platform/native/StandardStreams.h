#pragma once

namespace hylden {

/// Gives a program that was started with standard input, output or error closed the null device in their place.
/// Otherwise the next file or socket that it opens would get that number, and what is printed would go there.
/// To be called before anything is opened.
void KeepStandardStreams();

}  // namespace hylden
