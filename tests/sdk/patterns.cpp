// Built with nothing but the compiler flags pkg-config gives for the SDK.
#include <filenamepatternreplacer.h>
#include <kvvector.h>

#include <cstdio>

int main()
{
    const FileNamePatternReplacer replacer(
        {{QStringLiteral("<inputfile>"), QStringLiteral("walk")}});
    const KvVector empty;
    std::printf("%s %s\n", qPrintable(replacer.parse(QStringLiteral("<inputfile>-1"))),
                empty.isEmpty() ? "empty" : "full");
    return 0;
}
