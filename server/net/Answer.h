#pragma once

#include <memory>
#include <string>

#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/serializer.hpp>

#include "server/http/Response.h"

namespace hmi {

/// How a client wants its answer.
struct Manner {
    unsigned version = 11;
    bool headOnly = false;
    bool keepAlive = true;
};

/// A response on its way to the client.
class Answer {
public:
    using Message = boost::beast::http::response<boost::beast::http::buffer_body>;

    Answer(Response response, const Manner& manner);
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    /// The part of the body that comes next; an empty one ends it.
    void supply(std::string part);
    /// What makes them; shared with the worker that it runs on.
    std::shared_ptr<BodyParts> parts() const noexcept { return source; }
    Lane partsLane() const noexcept { return response.partsLane; }
    bool keepsAlive() const { return message.keep_alive(); }
    bool isDone();

private:
    void setHeaders(const Manner& manner);

    Response response;
    const std::shared_ptr<BodyParts> source;  ///< null for a body that is there
    Message message;
    const bool headOnly;

public:
    boost::beast::http::response_serializer<boost::beast::http::buffer_body> serializer{message};
};

}  // namespace hmi
