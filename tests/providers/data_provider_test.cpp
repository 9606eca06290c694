#include "providers/data_provider.h"

#include <gtest/gtest.h>

#include "providers/database_query.h"
#include "providers/text_file.h"
#include "support/collecting_logger.h"
#include "support/one_step.h"

namespace {

using DataProviders::DataProvider;

bool IsQuery(const DataProvider* source) {
    return dynamic_cast<const DataProviders::DatabaseQuery*>(source) != nullptr;
}
bool IsTextFile(const DataProvider* source) {
    return dynamic_cast<const DataProviders::TextFile*>(source) != nullptr;
}

TEST(DataProvider, MakesSourceOfTypeWord) {
    const struct {
        const char16_t* word;
        bool (*is_expected)(const DataProvider*);
    } kCases[] = {
        {u"DatabaseQuery", IsQuery},   {u"databasequery", IsQuery}, {u"DatabaseTable", IsQuery},
        {u"DATABASETABLE", IsQuery},   {u"TextFile", IsTextFile},   {u"textFILE", IsTextFile},
        {u"\"TextFile\"", IsTextFile},
    };
    testing_support::OneStep step;
    testing_support::CollectingLogger logger;
    std::unique_ptr<DataProvider> source;  // each replaces the one before
    for (const auto& c : kCases) {
        SCOPED_TRACE(ToUtf8(c.word));
        String error;
        EXPECT_TRUE(DataProvider::Create(error, step.With(Section::Source, {{u"Type", c.word}}),
                                         source, logger));
        EXPECT_TRUE(c.is_expected(source.get()));
    }
    EXPECT_TRUE(logger.Messages().empty());
}

TEST(DataProvider, RefusesOtherWords) {
    testing_support::OneStep step;
    testing_support::CollectingLogger logger;
    for (const char16_t* word : {u"", u"Database ", u"TextFile ", u"Text", u"TextFiles"}) {
        SCOPED_TRACE(ToUtf8(word));
        String error;
        std::unique_ptr<DataProvider> source;
        EXPECT_FALSE(DataProvider::Create(error, step.With(Section::Source, {{u"Type", word}}),
                                          source, logger));
        EXPECT_EQ(error, u"Incorrect type for source '" + String(word) + u"'.");
        EXPECT_EQ(source, nullptr);
    }
}

}  // namespace
