#include "http_session.h"

#include <boost/asio/dispatch.hpp>

#include <chrono>

namespace http = boost::beast::http;

namespace {

constexpr std::chrono::seconds kTimeout{30};  // for a whole request, and for a whole answer
constexpr std::chrono::seconds kLastWords{2};
constexpr std::size_t kOtherFields = 16384;  // what a head may hold beside the token
constexpr std::size_t kReadAhead = 65536;
constexpr std::size_t kMaxDiscarded = 1 << 20;

using Response = http::response<http::string_body>;

Response Refusal(http::status status, const std::string& reason) {
    Response response(status, 11);
    if (status == http::status::unauthorized) response.set(http::field::www_authenticate, "Bearer");
    response.set(http::field::content_type, "text/plain; charset=utf-8");
    response.body() = reason + '\n';
    return response;
}

Response Admission(const Verdict& verdict) {
    Response response(http::status::ok, 11);
    response.set("X-Principal", verdict.principal);
    response.set("X-Groups", verdict.groups);
    return response;
}

}  // namespace

HttpSession::HttpSession(Gate& gate, Socket socket, std::shared_ptr<const void> connection)
    : gate_(gate),
      stream_(std::move(socket)),
      connection_(std::move(connection)),
      buffer_(gate.MaxAuthorizationSize() + kOtherFields + kReadAhead) {}

// Each step hands the next one to Asio, which calls it from its loop: a cycle, but no recursion.
// NOLINTBEGIN(misc-no-recursion)
void HttpSession::Start() {
    Error ignored;
    stream_.socket().set_option(boost::asio::ip::tcp::no_delay(true), ignored);
    boost::asio::dispatch(stream_.get_executor(), [self = shared_from_this()] { self->Read(); });
}

void HttpSession::Read() {
    head_.emplace();
    head_->header_limit(static_cast<std::uint32_t>(gate_.MaxAuthorizationSize() + kOtherFields));
    stream_.expires_after(kTimeout);
    http::async_read_header(
        stream_, buffer_, *head_,
        [self = shared_from_this()](Error error, std::size_t) { self->OnRead(error); });
}

void HttpSession::OnRead(Error error) {
    if (!error && !head_->is_done()) error = http::error::unexpected_body;
    if (!error) return Write(Answer());
    // Behind a proxy only 401 means refused, anything else that the gate is out of order.
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return Write(Refusal(http::status::unauthorized, "The request's head is too large."));
    const bool isReadable = error.category() == make_error_code(http::error::bad_method).category();
    if (!isReadable || error == http::error::end_of_stream || error == http::error::partial_message)
        return;  // gone, or too slow
    Write(Refusal(http::status::bad_request, "This is no request without a body."));
}

Response HttpSession::Answer() const {
    if (head_->Method() != http::verb::get)
        return Refusal(http::status::method_not_allowed, "Only GET is answered.");
    if (head_->AuthorizationFields() > 1)
        return Refusal(http::status::unauthorized, "There are several Authorization fields.");
    try {
        const Verdict verdict = gate_.Judge(head_->Authorization());
        return verdict.admitted ? Admission(verdict)
                                : Refusal(http::status::unauthorized, verdict.reason);
    } catch (...) {  // the judge lost its memory: nobody passes
        return Refusal(http::status::internal_server_error, "The token could not be judged.");
    }
}

void HttpSession::Write(Response response) {
    response_ = std::move(response);
    response_.set(http::field::cache_control, "no-store");
    const bool isRead = head_->is_done() && head_->Method() == http::verb::get;
    response_.keep_alive(isRead && head_->keep_alive());
    response_.prepare_payload();
    stream_.expires_after(kTimeout);
    http::async_write(stream_, response_, [self = shared_from_this()](Error error, std::size_t) {
        self->OnWritten(error);
    });
}

void HttpSession::OnWritten(Error error) {
    if (error) return;
    if (response_.keep_alive()) return Read();
    // A socket that is closed with bytes unread resets the connection, and the answer is lost.
    stream_.socket().shutdown(Socket::shutdown_send, error);
    stream_.expires_after(kLastWords);
    Discard(kMaxDiscarded);
}

void HttpSession::Discard(std::size_t remaining) {
    stream_.async_read_some(boost::asio::buffer(discarded_),
                            [self = shared_from_this(), remaining](Error error, std::size_t size) {
                                if (!error && size < remaining) self->Discard(remaining - size);
                            });
}
// NOLINTEND(misc-no-recursion)
