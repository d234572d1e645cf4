#pragma once

#include "basalt/bIpAddress.h"
#include "ostrasdk/VeRestClient.h"

namespace OstraSdk {

/// The handle on one sensor server. One thread at a time.
class VeSystem {
  public:
    /// Not connected, and nothing is sent.
    VeSystem(const bIpAddress& address, unsigned int controlPort);

    /// Asks the server for its information, within 5 s; an answer makes the system connected. Throws
    /// Ve::Exception as VeTransaction does; the system is not connected then.
    void Connect();

    /// Forgets the connection. No connection is open between requests, so nothing is sent.
    void Disconnect();

    /// Whether Connect succeeded and no Disconnect followed. The next request notices a server that has died
    /// since; the system stays connected until Disconnect is called.
    [[nodiscard]] bool IsConnected() const { return connected; }

    [[nodiscard]] const bIpAddress& Address() const { return address; }
    [[nodiscard]] VeRestClient& Client() { return client; }

  private:
    bIpAddress address;
    VeRestClient client;
    bool connected = false;
};

} // namespace OstraSdk
