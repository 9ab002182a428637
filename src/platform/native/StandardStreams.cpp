#include "platform/native/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace hylden {

void KeepStandardStreams() {
  // Opening takes the lowest free number, so that the streams are gone through in that order.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(stream, F_GETFD) == -1) open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY);
}

}  // namespace hylden
