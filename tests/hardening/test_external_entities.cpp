// External DTDs and entities of a setup file are read from local files only:
// a document that names one by a network URL fails to load without any
// connection being made, and local ones (a path or a file: URL without a
// host) still work.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "registry/UnitRegistry.h"
#include "xun.h"
#include "registry_access.h"

namespace {

// A listener on the loopback interface that accepts every connection, closes
// it at once and counts it. A parser that tried to fetch a URL naming this
// port would be counted here (and would get no data).
class LoopbackListener {
  public:
    LoopbackListener() {
        m_socket = socket(AF_INET, SOCK_STREAM, 0);
        EXPECT_GE(m_socket, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;
        EXPECT_EQ(bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(m_socket, 8), 0);
        socklen_t length = sizeof address;
        EXPECT_EQ(getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length), 0);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Serve(); });
    }

    ~LoopbackListener() {
        m_stop = true;
        m_thread.join();
        close(m_socket);
    }

    LoopbackListener(const LoopbackListener&) = delete;
    LoopbackListener& operator=(const LoopbackListener&) = delete;

    int port() const { return m_port; }
    int connections() const { return m_connections; }

  private:
    void Serve() {
        while (!m_stop) {
            pollfd waiting{m_socket, POLLIN, 0};
            if (poll(&waiting, 1, 20) > 0) {
                const int connection = accept(m_socket, nullptr, nullptr);
                if (connection >= 0) {
                    ++m_connections;
                    close(connection);
                }
            }
        }
    }

    int m_socket = -1;
    int m_port = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_connections{0};
    std::thread m_thread;
};

class ExternalEntities : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/xun-entities-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
    }
    void TearDown() override {
        const std::string command = "rm -rf '" + m_dir + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }

    std::string Write(const std::string& name, const std::string& text) {
        const std::string path = m_dir + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    // Loads the setup file; returns the result and what went to standard
    // error.
    int Load(const std::string& path, std::string* err) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = xunSetupLoad(path.c_str());
        testing::internal::GetCapturedStdout();
        *err = testing::internal::GetCapturedStderr();
        return result;
    }

    std::string m_dir;
};

const char kUnits[] = "<XUN><Group Name=\"Units\"><Rows>"
                      "<R Ident=\"UnitMeter\" KvId=\"1000\" Expr=\"Length\"/>"
                      "</Rows></Group></XUN>\n";

std::string DescOf(long key) {
    const CKVunit* unit = xuntest::UnitByKey(key);
    return unit != nullptr ? unit->m_strDesc : "(no unit)";
}

TEST_F(ExternalEntities, NetworkDtdIsNotFetchedAndTheLoadFails) {
    LoopbackListener listener;
    const std::string url = "http://127.0.0.1:" + std::to_string(listener.port()) + "/xun.dtd";
    const std::string path = Write(
        "net_dtd.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"" + url + "\">\n" + kUnits);
    std::string err;
    EXPECT_EQ(Load(path, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
    EXPECT_EQ(listener.connections(), 0);
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
}

TEST_F(ExternalEntities, NetworkEntityIsNotFetchedAndTheLoadFails) {
    LoopbackListener listener;
    const std::string url = "http://127.0.0.1:" + std::to_string(listener.port()) + "/e.txt";
    const std::string path =
        Write("net_entity.xml", "<?xml version=\"1.0\"?>\n"
                                "<!DOCTYPE XUN [ <!ENTITY e SYSTEM \"" +
                                    url +
                                    "\"> ]>\n"
                                    "<XUN>&e;<Group Name=\"Units\"><Rows>"
                                    "<R Ident=\"UnitMeter\" KvId=\"1000\" "
                                    "Expr=\"Length\"/></Rows></Group></XUN>\n");
    std::string err;
    EXPECT_EQ(Load(path, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
    EXPECT_EQ(listener.connections(), 0);
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
}

TEST_F(ExternalEntities, FileUrlWithAHostIsRefused) {
    LoopbackListener listener;
    const std::string url =
        "file://127.0.0.1:" + std::to_string(listener.port()) + m_dir + "/defaults.dtd";
    Write("defaults.dtd", "<!ATTLIST R Desc CDATA \"default description\">\n");
    const std::string path =
        Write("host_dtd.xml",
              "<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"" + url + "\">\n" + kUnits);
    std::string err;
    EXPECT_EQ(Load(path, &err), 0);
    EXPECT_EQ(listener.connections(), 0);
    EXPECT_TRUE((xuntest::Registries().units.Count() == 0));
}

TEST_F(ExternalEntities, DtdByRelativePathIsReadFromTheDocumentsFolder) {
    Write("defaults.dtd", "<!ATTLIST R Desc CDATA \"default description\">\n");
    const std::string path = Write(
        "local_dtd.xml",
        std::string("<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"defaults.dtd\">\n") + kUnits);
    std::string err;
    ASSERT_EQ(Load(path, &err), 1);
    EXPECT_EQ(err, "");
    EXPECT_EQ(DescOf(1000), "default description");
}

TEST_F(ExternalEntities, DtdByLocalFileUrlIsRead) {
    Write("defaults.dtd", "<!ATTLIST R Desc CDATA \"from a file URL\">\n");
    const std::string path =
        Write("file_url_dtd.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"file://" +
                                      m_dir + "/defaults.dtd\">\n" + kUnits);
    std::string err;
    ASSERT_EQ(Load(path, &err), 1);
    EXPECT_EQ(err, "");
    EXPECT_EQ(DescOf(1000), "from a file URL");
}

TEST_F(ExternalEntities, LocalEntityIsExpanded) {
    Write("text.ent", "from an entity file");
    const std::string path =
        Write("local_entity.xml", "<?xml version=\"1.0\"?>\n"
                                  "<!DOCTYPE XUN [ <!ENTITY e SYSTEM \"text.ent\"> ]>\n"
                                  "<XUN><Group Name=\"Units\"><Rows>"
                                  "<R Ident=\"UnitMeter\" KvId=\"1000\" Expr=\"Length\"/>"
                                  "</Rows></Group><Note>&e;</Note></XUN>\n");
    std::string err;
    ASSERT_EQ(Load(path, &err), 1);
    EXPECT_EQ(err, "");
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
}

TEST_F(ExternalEntities, MissingLocalDtdFailsTheLoad) {
    const std::string path = Write(
        "missing_dtd.xml",
        std::string("<?xml version=\"1.0\"?>\n<!DOCTYPE XUN SYSTEM \"none.dtd\">\n") + kUnits);
    std::string err;
    EXPECT_EQ(Load(path, &err), 0);
    EXPECT_EQ(err, "Document '" + path + "' not parsed successfully. \n");
}

} // namespace
