#include "server/net/TlsFiles.h"

#include <string>

#ifdef HMI_WITH_TLS
#include <boost/asio/ssl/context.hpp>
#endif

#include "server/Log.h"
#include "server/StartError.h"

namespace hmi {

TlsFiles::TlsFiles(std::filesystem::path certificateFile, std::filesystem::path keyFile)
    : certificate(std::move(certificateFile)), key(std::move(keyFile)) {
    if (certificate.empty() != key.empty())
        throw StartError("--certificate and --key belong together");
    if (isOn())
        context = load();
}

#ifdef HMI_WITH_TLS
TlsContextPtr TlsFiles::load() const {
    namespace ssl = boost::asio::ssl;
    const std::filesystem::path* reading = &certificate;
    try {
        auto made = std::make_shared<ssl::context>(ssl::context::tls_server);
        SSL_CTX_set_min_proto_version(made->native_handle(), TLS1_2_VERSION);
        made->set_options(ssl::context::default_workarounds | ssl::context::no_compression |
                          SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE);
        // A key under a passphrase cannot be used: nobody sits at a terminal to be asked.
        made->set_password_callback(
            [](std::size_t, ssl::context::password_purpose) { return std::string(); });
        made->use_certificate_chain_file(certificate.string());
        reading = &key;
        made->use_private_key_file(key.string(), ssl::context::pem);
        // Only a key of the same kind was compared with the certificate.
        if (SSL_CTX_check_private_key(made->native_handle()) != 1)
            throw StartError(key.string() + ": is not the key of " + certificate.string());
        return made;
    } catch (const boost::system::system_error& error) {
        throw StartError(reading->string() + ": cannot be used: " + error.code().message());
    }
}
#else
TlsContextPtr TlsFiles::load() const {
    throw StartError("--certificate: this build has no TLS");
}
#endif

void TlsFiles::reload() {
    if (!isOn())
        return;
    try {
        context = load();
        log(LogLevel::info, "the certificate was read again");
    } catch (const StartError& error) {
        log(LogLevel::error, std::string("the certificate stays as it was: ") + error.what());
    }
}

}  // namespace hmi
