#include "endtoend/TlsClient.h"

#ifndef _WIN32

#include <chrono>
#include <memory>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace ssl = asio::ssl;

namespace {

std::string subjectOf(SSL* connection) {
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(
        SSL_get1_peer_certificate(connection), &X509_free);
    char name[256] = {};
    if (certificate)
        X509_NAME_oneline(X509_get_subject_name(certificate.get()), name, sizeof name);
    return name;
}

}  // namespace

void writeCertificate(const std::string& certificateFile, const std::string& keyFile,
                      const std::string& name, bool byRsa) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        byRsa ? EVP_RSA_gen(2048) : EVP_EC_gen("P-256"), &EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), &X509_free);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 24 * 3600);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* const subject = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), subject);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    const std::unique_ptr<BIO, decltype(&BIO_free_all)> to(
        BIO_new_file(certificateFile.c_str(), "w"), &BIO_free_all);
    PEM_write_bio_X509(to.get(), certificate.get());
    const std::unique_ptr<BIO, decltype(&BIO_free_all)> keyTo(BIO_new_file(keyFile.c_str(), "w"),
                                                              &BIO_free_all);
    PEM_write_bio_PrivateKey(keyTo.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
}

TlsAnswer getByTls(std::uint16_t port, const std::string& target, int highest) try {
    asio::io_context io;
    ssl::context context(ssl::context::tls_client);
    SSL_CTX_set_max_proto_version(context.native_handle(), highest);
    beast::ssl_stream<beast::tcp_stream> stream(io, context);
    beast::get_lowest_layer(stream).connect({asio::ip::address_v4::loopback(), port});
    stream.handshake(ssl::stream_base::client);
    http::request<http::empty_body> request(http::verb::get, target, 11);
    request.set(http::field::host, "localhost");
    http::write(stream, request);
    beast::flat_buffer buffer;
    http::response<http::string_body> response;
    http::read(stream, buffer, response);
    return {response.result_int(), subjectOf(stream.native_handle())};
} catch (const boost::system::system_error&) {
    return {};
}

#endif
