#include "http_door.h"

#include "http_session.h"

#include <boost/asio/strand.hpp>

#include <chrono>
#include <iostream>

namespace {

constexpr long kMaxConnections = 1000;  // times the largest head is what memory they take at most
constexpr std::chrono::milliseconds kPause{100};

}  // namespace

HttpDoor::HttpDoor(Gate& gate, const Endpoint& endpoint, std::size_t threads)
    : gate_(gate),
      context_(static_cast<int>(threads)),
      acceptor_(context_, endpoint),
      pause_(context_),
      connections_(std::make_shared<int>()) {
    Accept();
    for (std::size_t i = 0; i < threads; ++i)
        threads_.emplace_back([this] { Serve(); });
}

HttpDoor::~HttpDoor() {
    context_.stop();
    for (std::thread& thread : threads_)
        thread.join();
}

void HttpDoor::Accept() {
    // A strand each: a connection's timeout may not be dealt with while its request is.
    acceptor_.async_accept(
        boost::asio::make_strand(context_),
        [this](boost::system::error_code error, HttpSession::Socket socket) {
            if (error) return AcceptAgainLater();  // out of descriptors, for example
            if (connections_.use_count() <= kMaxConnections)
                std::make_shared<HttpSession>(gate_, std::move(socket), connections_)->Start();
            Accept();
        });
}

void HttpDoor::AcceptAgainLater() {
    pause_.expires_after(kPause);
    pause_.async_wait([this](boost::system::error_code) { Accept(); });
}

void HttpDoor::Serve() {
    for (;;) {
        try {
            context_.run();
            return;
        } catch (const std::exception& error) {  // memory ran out: one connection less
            std::cerr << "token_gate: " << error.what() << std::endl;
        }
    }
}
