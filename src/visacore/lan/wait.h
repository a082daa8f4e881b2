#pragma once
// Waiting for one socket under a deadline while watching a cancel token.
#include "visacore/cancel_token.h"
#include "visacore/lan/deadline.h"

namespace braxcfg::visa::lan {

enum class WaitResult { Ready, TimedOut, Cancelled, Failed };

// Waits until `fd` reports one of `events` (POLLIN, POLLOUT), the deadline
// passes or `cancel` (may be null) is triggered. Error and hang-up
// conditions count as Ready: the next call on the socket tells which.
WaitResult waitFor(int fd, short events, const Deadline& deadline, const CancelToken* cancel);

}  // namespace braxcfg::visa::lan
