#pragma once

#ifndef _WIN32

#include <cstdint>
#include <string>

#include <openssl/ssl.h>

struct TlsAnswer {
    unsigned status = 0;  ///< 0: there was no connection, or no answer
    std::string subject;  ///< of the server's certificate
};

/// Writes a new key and a certificate that it signed itself, for a day.
void writeCertificate(const std::string& certificateFile, const std::string& keyFile,
                      const std::string& name, bool byRsa = false);

/// Takes any certificate.
TlsAnswer getByTls(std::uint16_t port, const std::string& target, int highest = TLS1_3_VERSION);

#endif
