#include "consumers/data_consumer.h"

#include <gtest/gtest.h>

#include "base/activity_trail.h"
#include "consumers/text_file.h"
#include "support/collecting_logger.h"
#include "support/one_step.h"

namespace {

using DataConsumers::DataConsumer;

class DataConsumerFactory : public testing::Test {
protected:
    bool Create(StringView type, std::size_t step = 0) {
        error_.clear();
        return DataConsumer::Create(error_, step_.With(Section::Target, {{u"Type", String(type)}}),
                                    target_, logger_, step);
    }

    testing_support::OneStep step_;
    testing_support::CollectingLogger logger_;
    std::unique_ptr<DataConsumer> target_;
    String error_;
};

TEST_F(DataConsumerFactory, MakesTargetOfTypeWord) {
    for (const char16_t* word : {u"TextFile", u"textfile", u"TEXTFILE"}) {
        SCOPED_TRACE(ToUtf8(word));
        EXPECT_TRUE(Create(word));
        EXPECT_NE(dynamic_cast<DataConsumers::TextFile*>(target_.get()), nullptr);
    }
    EXPECT_TRUE(logger_.Messages().empty());
    EXPECT_EQ(CurrentState(), u"");
}

TEST_F(DataConsumerFactory, RefusesUnknownWord) {
    for (const char16_t* word : {u"Text File", u"TextFile ", u" ", u"CSV"}) {
        EXPECT_FALSE(Create(word));
        EXPECT_EQ(error_, u"Incorrect type for target '" + String(word) + u"'.");
    }
    EXPECT_EQ(target_, nullptr);
    EXPECT_TRUE(logger_.Messages().empty());
    EXPECT_EQ(CurrentState(), u"");
}

TEST_F(DataConsumerFactory, WarnsOfStepWithoutTarget) {
    ASSERT_TRUE(Create(u"TextFile"));
    EXPECT_TRUE(Create(u"", 3));
    EXPECT_EQ(target_, nullptr) << "what was held before goes";
    EXPECT_EQ(error_, u"");
    EXPECT_EQ(logger_.Messages(),
              std::vector<String>{u"Warning (step 3): no target defined properly. Execute the "
                                  u"source only."});
    EXPECT_EQ(logger_.LastLevel(), 0);
}

}  // namespace
