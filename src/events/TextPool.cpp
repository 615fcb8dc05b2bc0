#include "events/TextPool.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "platform/Text.h"
#include "targetsystem/proxy/Guid.h"

using ZrHmiSrv::Text;

namespace ZrHmiEventLogger {

TextPool& texts() {
    static TextPool pool;
    return pool;
}

Text TextPool::of(std::string_view text) {
    if (text.empty() || text.size() > maxLength)
        return Text(text);
    const std::size_t hash = std::hash<std::string_view>()(text);
    Shard& shard = shardOf(hash);
    Text replaced;  // released after the lock
    if (!shard.mutex.try_lock())
        return Text(text);
    Lock lock(shard.mutex, std::adopt_lock);
    Text& known = shard.lately[hash / shards.size() % shard.lately.size()];
    if (known.view() != text)
        replaced = std::exchange(known, Text(text));
    return known;
}

Text TextPool::of(BSTR text) {
    const Utf16View view(text, SysStringLen(text));
    const bool isAscii =
        std::all_of(view.begin(), view.end(), [](OLECHAR unit) { return unit < 0x80; });
    if (!isAscii || view.size() > maxLength)
        return of(toUtf8(view));
    std::array<char, maxLength> narrow;
    std::transform(view.begin(), view.end(), narrow.begin(),
                   [](OLECHAR unit) { return static_cast<char>(unit); });
    return of(std::string_view(narrow.data(), view.size()));
}

ZrHmiSrv::Binary TextPool::of(std::span<const std::byte> bytes) {
    return ZrHmiSrv::Binary(
        of(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())));
}

Text TextPool::of(const GUID& guid) {
    const std::size_t hash = std::hash<std::string_view>()(
        std::string_view(reinterpret_cast<const char*>(&guid), sizeof guid));
    Shard& shard = shardOf(hash);
    GuidText replaced;  // released after the lock
    if (!shard.mutex.try_lock())
        return Text(ZrAtlCom::guidText(guid));
    Lock lock(shard.mutex, std::adopt_lock);
    GuidText& known = shard.guids[hash / shards.size() % shard.guids.size()];
    if (known.text.empty() || known.guid != guid)
        replaced = std::exchange(known, {guid, Text(ZrAtlCom::guidText(guid))});
    return known.text;
}

}  // namespace ZrHmiEventLogger
