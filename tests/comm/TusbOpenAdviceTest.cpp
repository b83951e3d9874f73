#include "TusbOpenAdvice.h"
#include <gtest/gtest.h>

TEST(TusbOpenAdvice, NamesTheDeviceAndHowToGetAccess)
{
    const std::pair<TusbDeviceApi::OpenAttempt, std::vector<std::string>> cases[] = {
        {{"", false}, {"no USB device of vendor 0403 was found\n"}},
        {{"0403:6001 \"Serial Cable\"", false}, {"USB device tried: 0403:6001 \"Serial Cable\"\n"}},
        {{"0403:6001 \"\"", true},
         {"USB device tried: 0403:6001 \"\"\n", "permission denied", "60-kt930pc.rules", "replug the analyzer",
          "logged in at the seat"}},
        {{"0403:6001 \"KT930\"", false, true},
         {"USB device tried: 0403:6001 \"KT930\"\n", "in use by another program"}},
    };
    for (const auto &[attempt, says] : cases) {
        const std::string text = TusbOpenAdvice::forFailure(attempt);
        for (const auto &part : says)
            EXPECT_NE(text.find(part), std::string::npos) << text;
        EXPECT_EQ(text.find("permission") != std::string::npos, attempt.accessDenied) << text;
        EXPECT_EQ(text.find("another program") != std::string::npos, attempt.busy) << text;
    }
}
