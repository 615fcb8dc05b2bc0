#include "server/history/History.h"

#include <utility>

#include "server/events/LogBook.h"
#include "server/history/HistoryReader.h"
#include "server/history/HistoryWriter.h"
#include "server/targets/Gap.h"

namespace hmi {

namespace {

bool isKept(const Change& change) {
    switch (change.type) {
        case ChangeType::raised:
        case ChangeType::updated:
        case ChangeType::removed:
        case ChangeType::message:
        case ChangeType::forgotten:
        case ChangeType::reset:
        case ChangeType::confirmation:
            return true;
        case ChangeType::gap:  // what the extension forgot is not missing here
            return change.gap->reason != GapReason::forgotten;
        case ChangeType::log:
            return importedTarget(change.entry->message).has_value();
        default:
            return false;
    }
}

class History final : public IHistory {
public:
    History(const HistorySettings& settings, HistorySources sources)
        : queue(settings.queued),
          tell(std::move(sources.tell)),
          texts(std::move(sources.texts),
                [this](std::int64_t place, std::string text) {
                    queue.push(PlacedText{place, std::move(text)});
                }),
          writer({settings.file, settings.station, {settings.days, settings.bytes}}, queue, texts,
                 std::move(sources.events), [this] { tell(status()); }),
          reader(
              settings.file, [this] { return writer.generation(); },
              [this](std::uint64_t generation) { writer.suspect(generation); }) {}
    ~History() override { stop(); }

    void start() override { writer.start(); }

    bool post(const Change& change) noexcept override {
        return !isKept(change) || queue.push(change);
    }

    void keep(const AuditEntry& entry) override {
        queue.push(AuditLine{ZrHmiSrv::Timestamp::now(), entry});
    }

    HistoryPage read(const HistoryQuery& query) override { return reader.read(query); }

    HistoryStatus status() const override {
        HistoryStatus status = writer.status();
        status.queued = queue.size();
        status.lost = queue.lost();
        status.textsPending = texts.pending();
        status.textsMissed = texts.missed();
        return status;
    }

    void write(PrometheusText& text) const override {
        const HistoryStatus now = status();
        const auto family = [&text](std::string_view name, std::string_view type, double value,
                                    std::string_view help) {
            text.family(name, type, help);
            text.sample({}, value);
        };
        family("hmi_history_good", "gauge", now.state == HistoryStatus::State::good ? 1 : 0,
               "Whether the history keeps up.");
        family("hmi_history_queued", "gauge", static_cast<double>(now.queued),
               "Changes that wait to be written to the history.");
        family("hmi_history_written_total", "counter", static_cast<double>(now.written),
               "Entries written to the history.");
        family("hmi_history_lost_total", "counter", static_cast<double>(now.lost),
               "Changes that the history lost because its queue or the disk was full.");
        family("hmi_history_removed_total", "counter", static_cast<double>(now.removed),
               "Entries removed from the history, too old or too many.");
        family("hmi_history_texts_pending", "gauge", static_cast<double>(now.textsPending),
               "Entries of the history whose text is being fetched.");
        family("hmi_history_texts_missed_total", "counter", static_cast<double>(now.textsMissed),
               "Entries of the history that stay without a text.");
        family("hmi_history_bytes", "gauge", static_cast<double>(now.bytes),
               "Bytes that the history's file uses.");
    }

    void stop() override {
        texts.stop();
        writer.stop();
    }

private:
    HistoryQueue queue;
    const std::function<void(const HistoryStatus&)> tell;
    HistoryTexts texts;
    HistoryWriter writer;
    HistoryReader reader;
};

}  // namespace

std::unique_ptr<IHistory> openHistory(const HistorySettings& settings, HistorySources sources) {
    return std::make_unique<History>(settings, std::move(sources));
}

}  // namespace hmi
