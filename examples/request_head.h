// Of a request the method and the Authorization field; all else is read past. Boost's own container
// of fields is not used since it takes none of more than 64 KiB.
#pragma once

#include <boost/beast/http/basic_parser.hpp>

#include <cstdint>
#include <string>

class RequestHead : public boost::beast::http::basic_parser<true> {
  public:
    boost::beast::http::verb Method() const { return method_; }
    std::size_t AuthorizationFields() const { return authorizationFields_; }
    const std::string& Authorization() const { return authorization_; }

  private:
    using Error = boost::beast::error_code;
    using Text = boost::beast::string_view;

    void on_request_impl(boost::beast::http::verb method, Text /*name*/, Text /*target*/,
                         int /*version*/, Error& /*error*/) override {
        method_ = method;
    }
    void on_field_impl(boost::beast::http::field name, Text /*spelling*/, Text value,
                       Error& /*error*/) override {
        if (name != boost::beast::http::field::authorization) return;
        ++authorizationFields_;
        authorization_.assign(value.data(), value.size());
    }
    void on_response_impl(int /*code*/, Text /*reason*/, int /*version*/,
                          Error& /*error*/) override {}
    void on_header_impl(Error& /*error*/) override {}
    void on_body_init_impl(const boost::optional<std::uint64_t>& /*length*/,
                           Error& /*error*/) override {}
    std::size_t on_body_impl(Text body, Error& /*error*/) override { return body.size(); }
    void on_chunk_header_impl(std::uint64_t /*size*/, Text /*extensions*/,
                              Error& /*error*/) override {}
    std::size_t on_chunk_body_impl(std::uint64_t /*remain*/, Text body, Error& /*error*/) override {
        return body.size();
    }
    void on_finish_impl(Error& /*error*/) override {}

    boost::beast::http::verb method_ = boost::beast::http::verb::unknown;
    std::size_t authorizationFields_ = 0;
    std::string authorization_;
};
