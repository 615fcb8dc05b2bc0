#pragma once

#include <filesystem>

#include "server/net/ClientStream.h"

namespace hmi {

/// The certificate that the server shows, from its files. On the I/O thread only.
class TlsFiles {
public:
    /// Empty paths: no TLS. Throws StartError when the files cannot be used.
    TlsFiles(std::filesystem::path certificate, std::filesystem::path key);

    bool isOn() const noexcept { return !certificate.empty(); }
    /// For new connections; null without TLS.
    TlsContextPtr current() const { return context; }
    /// Reads the files again. Those that cannot be used change nothing, and are told in the log.
    void reload();

private:
    TlsContextPtr load() const;

    const std::filesystem::path certificate;
    const std::filesystem::path key;
    TlsContextPtr context;
};

}  // namespace hmi
