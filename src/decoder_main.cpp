// The decoder: reads photos for the program that started it, which speaks to it through descriptor 3.
#include <cstdlib>
#include <cstring>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#ifdef TARNOVEL_HAS_CODECS
#include "codecs/Codecs.h"
#endif
#include "decoding/DecoderServer.h"
#include "decoding/Lockdown.h"

int main()
{
    constexpr int socket = 3;
    int kind = 0;
    socklen_t length = sizeof(kind);
    if (getsockopt(socket, SOL_SOCKET, SO_TYPE, &kind, &length) != 0 || kind != SOCK_SEQPACKET) {
        return EXIT_FAILURE; // started by hand
    }
    const pid_t program = getppid();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != program) {
        return EXIT_FAILURE;
    }
    close_range(socket + 1, ~0U, 0);
    const char *strict = std::getenv("TARNOVEL_DECODER_STRICT");
    const bool kills = strict != nullptr && std::strcmp(strict, "1") == 0;
#ifdef TARNOVEL_HAS_CODECS
    tarnovel::useCodecs();
#endif
    tarnovel::prepareDecoder();
    tarnovel::serveDecoder(socket,
                           tarnovel::lockDown(kills ? tarnovel::Unneeded::Kills : tarnovel::Unneeded::Fails));
}
