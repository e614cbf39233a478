// What desktop entries say, and what their command lines start.
#include "platform/linux/DesktopEntry.h"

#include "platform/linux/ApplicationPlaces.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string nameIn(const std::string& text, const std::string& locale) {
    const auto entry = DesktopEntry::parse(text, languagesOf(locale));
    return entry ? entry->name : "none";
}

TEST(DesktopEntry, SpeaksThePersonsLanguage) {
    const std::string text =
        "\xEF\xBB\xBF# words\n[Other]\nName=other\n[Desktop Entry]\nName[de]=Geräte\nName=Things\n"
        "Name[de_AT]=Sachen\nName[sr@latin]=Stvari\nName[de=broken\nNamed=no\n[Action]\nName=new\n";
    for (const auto& [locale, name] :
         std::map<std::string, std::string>{{"", "Things"},
                                            {"C.UTF-8", "Things"},
                                            {"fr_FR.UTF-8", "Things"},
                                            {"de_DE", "Geräte"},
                                            {"de_AT.UTF-8", "Sachen"},
                                            {"sr_RS.UTF-8@latin", "Stvari"},
                                            {"de_AT@euro", "Sachen"}})
        EXPECT_EQ(nameIn(text, locale), name) << locale;
    EXPECT_EQ(nameIn("Name=outside\n", ""), "none");
    EXPECT_EQ(nameIn("[Desktop Entry]\nName=a\\sb\\\\c<b>" + std::string("\0x", 2), ""),
              "a b\\c<b>");
}

struct Line {
    std::string exec;
    std::string program;
    std::string flatpak = {};
    std::string snap = {};
};

TEST(DesktopEntry, FindsTheProgramInACommandLine) {
    const Line lines[] = {
        {"vim %F", "vim"},
        {"/usr/bin/a-b --new %u", "/usr/bin/a-b"},
        {"\"/opt/My App/run\" %U", "/opt/My App/run"},
        {"\"/opt/a\\\"b\"", "/opt/a\"b"},
        {"/opt/50%%/run", "/opt/50%/run"},
        {"env -u X LANG=C GDK=1 prog --x", "prog"},
        {"env -i -- A=/x/y prog", "prog"},
        {"A=1 nice -n 5 ionice -c 3 prog", "prog"},
        {"pkexec /usr/sbin/tool", "/usr/sbin/tool"},
        {"sh -c \"exec $HOME/bin/tool --now\"", "/home/me/bin/tool"},
        {"bash -lc 'cd /opt/game && ./start.sh; true'", "/opt/game/start.sh"},
        {"python3.11 -u /usr/share/tool/main.py", "/usr/share/tool/main.py"},
        {"python3 -m tool", ""},
        {"wine game.exe", ""},
        {"python3", "python3"},
        {"java -jar ${HOME}/x.jar", "/home/me/x.jar"},
        {"sh /opt/x/start", "/opt/x/start"},
        {"/usr/bin/flatpak run --branch=stable --command=x org.a.B @@u %u @@", "/usr/bin/flatpak",
         "org.a.B"},
        {"flatpak run org.a.B//beta", "flatpak", "org.a.B"},
        {"env BAMF=/var/x.desktop /snap/bin/code.url-handler %U", "/snap/bin/code.url-handler", "",
         "code"},
        {"snap run firefox", "", "", "firefox"},
        {"\"never closed", ""},
        {"env", ""},
        {"sh -c 'sh -c \"sh -c \\\"sh -c deep\\\"\"'", ""},
        {"", ""},
    };
    for (const Line& each : lines) {
        const auto started = StartedProgram::of(execWords(each.exec, "/home/me"), "/home/me");
        EXPECT_EQ(started.program, each.program) << each.exec;
        EXPECT_EQ(started.flatpak, each.flatpak) << each.exec;
        EXPECT_EQ(started.snap, each.snap) << each.exec;
    }
}

}  // namespace
}  // namespace orrinvale
