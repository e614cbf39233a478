// A machine with applications of the test's own: the places of all kinds, in one tree.
#pragma once

#include "platform/linux/ApplicationPlaces.h"
#include "support/TestTree.h"

namespace orrinvale::testing {

struct MadeUpMachine {
    MadeUpMachine() {
        places.home = tree.at("home");
        places.dataHome = tree.at("home/.local/share");
        places.dataFolders = {places.dataHome, tree.at("usr/share")};
        places.programFolders = {tree.at("usr/bin")};
        places.dpkg = tree.at("dpkg");
        places.flatpaks = {tree.at("home/.local/share/flatpak"), tree.at("flatpak")};
        places.flatpakInstances = tree.at("run/.flatpak");
        places.snapSocket = tree.at("snapd.socket");
        places.snapFolder = tree.at("snap");
        places.appImageFolders = {tree.at("home/Applications"), tree.at("home/Downloads")};
        places.folderHolders = {tree.at("opt"), tree.at("home/Applications")};
        places.processes = tree.at("proc");
        places.ownProgram = tree.at("usr/bin/orrinvale");
        (void)tree.write("proc/1/cmdline", "init");
    }

    /// An entry for everybody with these lines behind Type and Name, which is the id.
    void entry(const std::string& id, const std::string& lines) {
        (void)tree.write("usr/share/applications/" + id + ".desktop",
                         "[Desktop Entry]\nType=Application\nName=" + id + "\n" + lines + "\n");
    }
    void program(const std::string& name, const std::string& bytes = "x") {
        (void)tree.write(name, bytes);
        (void)tree.setMode(name, 0755);
    }
    /// A package with further fields, each with a line break behind it, and files by their names in
    /// the tree.
    void package(const std::string& name, const std::string& fields,
                 const std::vector<std::string>& files,
                 const std::string& status = "install ok installed") {
        m_status += "Package: " + name + "\nStatus: " + status +
                    "\nArchitecture: amd64\nVersion: 1.0\n" + fields + "\n";
        std::string list = "/.\n";
        for (const std::string& each : files) list += tree.at(each) + '\n';
        (void)tree.write("dpkg/info/" + name + ".list", list);
        (void)tree.write("dpkg/status", m_status);
    }

    TestTree tree;
    ApplicationPlaces places;

private:
    std::string m_status;
};

}  // namespace orrinvale::testing
