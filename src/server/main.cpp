#include "server/run_server.h"

int main(int argumentCount, char** arguments) {
    return korv::RunServer(argumentCount, arguments);
}
