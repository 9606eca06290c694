#include "consumers/data_consumer.h"

#include "base/activity_trail.h"
#include "consumers/text_file.h"
#include "core/logger.h"
#include "files/format.h"
#include "files/text.h"

namespace DataConsumers {
namespace {

template <class Consumer>
std::unique_ptr<DataConsumer> Make() {
    return std::make_unique<Consumer>();
}

struct Type {
    StringView word;
    std::unique_ptr<DataConsumer> (*make)();
};

constexpr Type kTypes[] = {
    {u"TextFile", Make<TextFile>},
};

}  // namespace

bool DataConsumer::Create(String& error, const SectionSettings& settings,
                          std::unique_ptr<DataConsumer>& consumer, Quillon::Logger& logger,
                          std::size_t step) {
    const ScopedState state(u"DataConsumer::Create");
    const String word = settings.Text(u"Type");
    for (const Type& type : kTypes) {
        if (!text::EqualsIgnoringCase(word, type.word)) continue;
        consumer = type.make();
        return true;
    }
    if (!word.empty()) {
        error = Format(u"Incorrect type for target '%s'.", word);
        return false;
    }
    consumer.reset();
    String ignored;
    logger.Write(
        ignored,
        Format(u"Warning (step %d): no target defined properly. Execute the source only.", step),
        0);
    return true;
}

}  // namespace DataConsumers
