// One connection: reads the head of a request, never more than the gate finds worth reading,
// answers it, and waits for the next one.
#pragma once

#include "gate.h"
#include "request_head.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include <array>
#include <memory>
#include <optional>

class HttpSession : public std::enable_shared_from_this<HttpSession> {
  public:
    using Socket = boost::asio::ip::tcp::socket;

    // `connection` is held as long as this one is open.
    HttpSession(Gate& gate, Socket socket, std::shared_ptr<const void> connection);

    void Start();

  private:
    using Error = boost::beast::error_code;
    using Response = boost::beast::http::response<boost::beast::http::string_body>;

    void Read();
    void OnRead(Error error);
    Response Answer() const;
    void Write(Response response);
    void OnWritten(Error error);
    void Discard(std::size_t remaining);

    Gate& gate_;
    boost::beast::tcp_stream stream_;
    const std::shared_ptr<const void> connection_;
    boost::beast::flat_buffer buffer_;
    std::optional<RequestHead> head_;
    Response response_;
    std::array<char, 4096> discarded_{};
};
