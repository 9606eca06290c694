#include "check/secret_mask.h"

#include "support/one_step.h"

namespace {

struct Case {
    const char16_t* text;
    const char16_t* shown;
};

void ExpectShown(const SecretMask& mask, std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(ToUtf8(mask.Masked(c.text)), ToUtf8(c.shown)) << ToUtf8(c.text);
    }
}

TEST(SecretMask, HidesWhatStandsBehindNamesOfSecrets) {
    testing_support::OneStep job(platform::SystemClock(), "Edition=2\n");
    ExpectShown(SecretMask(job.Job()),
                {
                    {u"", u""},
                    {u"Driver=x;Pwd=abc;Uid=joe", u"Driver=x;Pwd=***;Uid=joe"},
                    {u"PWD=abc", u"PWD=***"},
                    {u"My Password=a b c;x=1", u"My Password=***;x=1"},
                    {u"access_token-2=ab&b=2", u"access_token-2=***&b=2"},
                    {u"zPwdZ=1;aSecretA=2;0token9=3", u"zPwdZ=***;aSecretA=***;0token9=***"},
                    {u"Pwd={a;b};c=1", u"Pwd=***;c=1"},
                    {u"Pwd={a}};b};c=1", u"Pwd=***;c=1"},
                    {u"Pwd={a}}", u"Pwd=***"},
                    {u"Pwd={a;b", u"Pwd=***"},
                    {u"Pwd=", u"Pwd="},
                    {u"Pwd=;a=1", u"Pwd=;a=1"},
                    {u"Pwd=a'b", u"Pwd=***'b"},
                    {u"Pwd=a\"b", u"Pwd=***\"b"},
                    {u"Pwd=a\r\nPwd=b\nc", u"Pwd=***\r\nPwd=***\nc"},
                    {u"Pwd=a=b;c", u"Pwd=***;c"},
                    // One value within another is hidden once.
                    {u"Pwd=http://joe:x@db;c=1", u"Pwd=***;c=1"},
                    {u"Pwd=//joe:x@db;c=1", u"Pwd=***;c=1"},
                    {u"//pwd=joe:xyz@db", u"//***db"},
                    // Three words are no name.
                    {u"where my token = 'a'", u"where my token = 'a'"},
                    {u"pass word=abc", u"pass word=abc"},
                    {u"http://joe:x@db/y?a=1", u"http://***db/y?a=1"},
                    {u"http://joe:x@y@db", u"http://***db"},
                    {u"http://joe@db", u"http://joe@db"},
                    {u"http://db:80/a@b", u"http://db:80/a@b"},
                    {u"//a:b@c //d:e@f", u"//***c //***f"},
                    {u"'http://a:b'@c", u"'http://a:b'@c"},
                });
}

TEST(SecretMask, HidesTheSecretsOfTheJobWhereverTheyStand) {
    testing_support::OneStep job(platform::SystemClock(), "Edition=2\n");
    job.Job().ParseCommandLine(
        {u"$PW$=from macro", u"$ALL$=Pwd=inside", u"$OTHER$=innocent", u"$SHORT$=abc"});
    job.With(Section::Source,
             {{u"Type", u"DatabaseQuery"},
              {u"Password", u"\"from key\""},
              {u"ConnectString", u"Driver=$OTHER$;Pwd=x$PW$;Token=$SHORT$;$ALL$"}});
    job.With(Section::Target, {{u"Password", u"from key, longer"}});
    const SecretMask mask(job.Job());
    ExpectShown(mask, {
                          {u"a from key, longer b from key c", u"a *** b *** c"},
                          {u"xfrom macro, from macro", u"***, ***"},
                          {u"inside innocent abc", u"*** innocent abc"},
                      });
    const auto shown = [&](Section section, StringView name, StringView value) {
        return ToUtf8(mask.ShownValue(section, {String(name), String(value)}));
    };
    EXPECT_EQ(shown(Section::Source, u"Password", u"abc"), "***");
    EXPECT_EQ(shown(Section::Source, u"Password", u""), "");
    EXPECT_EQ(shown(Section::Source, u"Query", u"select 'inside'"), "select '***'");
    EXPECT_EQ(shown(Section::Source, u"Passwort", u"abc"), "***");  // nobody knows what it holds

    testing_support::OneStep open(platform::SystemClock(), "Edition=2\nMaskSecrets=0\n");
    open.With(Section::Source, {{u"Password", u"from key"}});
    ExpectShown(SecretMask(open.Job()), {{u"Pwd=from key", u"Pwd=from key"}});
}

}  // namespace
