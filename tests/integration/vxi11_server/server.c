/* A VXI-11 instrument for the integration tests, on the XDR code rpcgen
 * generates, so the probe meets an encoder it does not share.
 *
 *   vxi11_test_server
 *
 * Listens on 127.0.0.1 at a port of the kernel's choice, registers the
 * device core program with the portmapper, prints the port on stdout and
 * then one line per call ("create_link NAME", "destroy_link LID").
 * Devices: inst0 exists; every other name is not accessible (error 3). Ends itself after a minute
 * so a test that dies cannot leave it behind. */
#include <netinet/in.h>
#include <rpc/pmap_clnt.h>
#include <rpc/rpc.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include "vxi11.h"

void device_core_1(struct svc_req *request, SVCXPRT *transport);

enum { kNoError = 0, kDeviceNotAccessible = 3 };

static long next_link = 1;

Create_LinkResp *create_link_1_svc(Create_LinkParms *parms, struct svc_req *request) {
    static Create_LinkResp response;
    (void)request;
    memset(&response, 0, sizeof response);
    printf("create_link %s\n", parms->device);
    fflush(stdout);
    response.error = strcmp(parms->device, "inst0") == 0 ? kNoError : kDeviceNotAccessible;
    if (response.error == kNoError) {
        response.lid = next_link++;
        response.maxRecvSize = 1024;
    }
    return &response;
}

Device_Error *destroy_link_1_svc(Device_Link *link, struct svc_req *request) {
    static Device_Error response;
    (void)request;
    printf("destroy_link %ld\n", *link);
    fflush(stdout);
    response.error = kNoError;
    return &response;
}

int main(void) {
    alarm(60);
    int fd = socket(AF_INET, SOCK_STREAM, 0);
    struct sockaddr_in address;
    memset(&address, 0, sizeof address);
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    /* svctcp_create does not listen on a socket it is given. */
    if (fd < 0 || bind(fd, (struct sockaddr *)&address, length) != 0 || listen(fd, 16) != 0 ||
        getsockname(fd, (struct sockaddr *)&address, &length) != 0) {
        perror("vxi11_test_server: socket");
        return 1;
    }
    SVCXPRT *transport = svctcp_create(fd, 0, 0);
    if (transport == NULL) {
        fprintf(stderr, "vxi11_test_server: svctcp_create failed\n");
        return 1;
    }
    pmap_unset(DEVICE_CORE, DEVICE_CORE_VERSION);
    if (!svc_register(transport, DEVICE_CORE, DEVICE_CORE_VERSION, device_core_1, IPPROTO_TCP)) {
        fprintf(stderr, "vxi11_test_server: cannot register with the portmapper\n");
        return 1;
    }
    printf("%d\n", ntohs(address.sin_port));
    fflush(stdout);
    svc_run();
    return 1;
}
