// A gateway without OPC, for the tests of its supervision: it connects to the local socket in its argument,
// says "hello", and does what the lines it gets say: "say TEXT" answers TEXT, "exit N" ends it, "hush" makes
// it read no more. Pings are answered. It ends when the socket closes.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

namespace {

int Connect(const char* pPath) {
    sockaddr_un Address{};
    Address.sun_family = AF_UNIX;
    std::strncpy(Address.sun_path, pPath, sizeof Address.sun_path - 1);
    const int Socket = socket(AF_UNIX, SOCK_STREAM, 0);
    return connect(Socket, reinterpret_cast<const sockaddr*>(&Address), sizeof Address) == 0 ? Socket : -1;
}

bool Say(int Socket, const std::string& rText) {
    const std::string Line = rText + "\n";
    return write(Socket, Line.data(), Line.size()) == static_cast<ssize_t>(Line.size());
}

bool Obey(int Socket, const std::string& rLine) {
    if (rLine.starts_with("say ")) {
        return Say(Socket, rLine.substr(4));
    }
    if (rLine.starts_with("exit ")) {
        std::_Exit(std::atoi(rLine.c_str() + 5));
    }
    if (rLine == "hush") {
        pause();
    }
    return rLine.find("ping") == std::string::npos || Say(Socket, "pong");
}

}  // namespace

int main(int argc, char** argv) {
    const int Socket = argc == 2 ? Connect(argv[1]) : -1;
    if (Socket < 0 || !Say(Socket, "hello " + std::to_string(getpid()))) {
        return 2;
    }
    std::string Line;
    char Byte = 0;
    while (read(Socket, &Byte, 1) == 1) {
        if (Byte != '\n') {
            Line += Byte;
        } else if (!Obey(Socket, std::exchange(Line, {}))) {
            return 1;
        }
    }
    return 0;
}
