// One activation with the real `ip` and `route`, inside private user,
// network and mount namespaces: a veth pair stands in for the modem's
// ccmni0 and a file bind-mounted over /etc/resolv.conf takes the servers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/sandbox.h"

namespace {

constexpr char kHostPath[] = "/usr/sbin:/usr/bin:/sbin:/bin";

std::string read_all(const std::string &path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string namespace_of(const char *kind) {
    char link[64] = {};
    if (readlink((std::string("/proc/self/ns/") + kind).c_str(), link, sizeof link - 1) < 0) {
        return "";
    }
    return link;
}

// Runs `script` in fresh namespaces with the host's own tools; its output
// and exit status.
int in_namespaces(const std::string &script, std::string *output) {
    std::string command = std::string("/usr/bin/env -i PATH=") + kHostPath +
                          " unshare --user --map-root-user --net --mount sh -c '" + script +
                          "' 2>&1";
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return -1;
    char buffer[512];
    output->clear();
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) *output += buffer;
    return pclose(pipe);
}

std::string section(const std::string &output, const std::string &name) {
    size_t start = output.find("--- " + name + "\n");
    if (start == std::string::npos) return "";
    start += name.size() + 5;
    size_t end = output.find("--- ", start);
    return output.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

TEST(DataCallNamespaces, ActivationSetsRouteMtuAndResolverWithTheRealTools) {
    std::string probe;
    if (access("/etc/resolv.conf", F_OK) != 0 ||
        in_namespaces("command -v ip && command -v route && ip link add t0 type veth peer name t1",
                      &probe) != 0) {
        GTEST_SKIP() << "private user/network/mount namespaces with ip, route and veth are not "
                        "available here: "
                     << probe;
    }
    const std::string resolv = nkw::test::Sandbox::current().root() + "/resolv.conf";
    std::ofstream(resolv) << "nameserver 203.0.113.1\n";
    const std::string host_resolv = read_all("/etc/resolv.conf");

    std::string output;
    int status = in_namespaces(
        "set -e; "
        "ip link add ccmni0 type veth peer name modem0; "
        "ip link set modem0 up; ip link set ccmni0 up; "
        "ip addr add 10.0.0.2/24 dev ccmni0; "
        "mount --bind " +
            resolv + " /etc/resolv.conf; " NKW_PAL_NETNS_HELPER " " + namespace_of("net") + " " +
            namespace_of("mnt") +
            "; "
            "echo \"--- route\"; ip route show default; "
            "echo \"--- link\"; ip link show ccmni0; "
            "echo \"--- resolv\"; cat /etc/resolv.conf",
        &output);
    ASSERT_EQ(0, status) << output;

    EXPECT_NE(std::string::npos, section(output, "route").find("default dev ccmni0")) << output;
    EXPECT_NE(std::string::npos, section(output, "link").find(" mtu 1340 ")) << output;
    EXPECT_EQ(
        "nameserver 192.0.2.53\nnameserver 192.0.2.54\n"
        "nameserver 2001:0db8:0000:0000:0000:0000:0000:0053\n"
        "nameserver 0000:0000:0000:0000:0000:0000:0000:0000\n",
        section(output, "resolv"));
    // iproute2 prints no RUNNING after "state UP": the check never finds a
    // ready interface, so the wait ends after its first round.
    EXPECT_NE(std::string::npos, output.find("set default route success")) << output;
    EXPECT_EQ(std::string::npos, output.find("ccmni retry times:1")) << output;

    EXPECT_EQ(host_resolv, read_all("/etc/resolv.conf"));
}

}  // namespace
