// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/StandardError.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>

namespace qrb::platform {

void writeStandardError(std::string_view text) noexcept
{
    while (!text.empty()) {
        pollfd target = {STDERR_FILENO, POLLOUT, 0};
        // A pipe whose reader has gone is ready as well, and writing to it would end the host by a signal.
        if (poll(&target, 1, 0) <= 0 || target.revents != POLLOUT) {
            return;
        }
        // A pipe that is ready takes this much at once.
        const ssize_t written = write(STDERR_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (written < 0 && errno != EINTR) {
            return;
        }
        text.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

} // namespace qrb::platform
