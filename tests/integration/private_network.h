#pragma once
// Moves the test process into network and mount namespaces of its own:
// only a loopback interface exists there, so no test traffic can leave the
// machine, and a private /run keeps the daemons' sockets away from the
// host's. Needs root; call before any thread starts.
#include <string>

namespace braxcfg::test {

bool enterPrivateNetwork(std::string& error);

}  // namespace braxcfg::test
