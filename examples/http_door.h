// The gate's HTTP side: GET requests of any path are answered by its verdict.
#pragma once

#include "gate.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <thread>
#include <vector>

class HttpDoor {
  public:
    using Endpoint = boost::asio::ip::tcp::endpoint;

    // Listens from now on; throws when that is not possible. `gate` must live longer.
    HttpDoor(Gate& gate, const Endpoint& endpoint, std::size_t threads);
    // Waits for the requests that are being judged, closes all connections.
    ~HttpDoor();

    HttpDoor(const HttpDoor&) = delete;
    HttpDoor& operator=(const HttpDoor&) = delete;

    Endpoint Address() const { return acceptor_.local_endpoint(); }

  private:
    void Accept();
    void AcceptAgainLater();
    void Serve();

    Gate& gate_;
    boost::asio::io_context context_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer pause_;
    std::shared_ptr<const void> connections_;  // its owners are the open ones
    std::vector<std::thread> threads_;
};
