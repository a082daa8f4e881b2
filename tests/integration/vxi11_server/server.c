/* A VXI-11 instrument for the integration tests, on the XDR code rpcgen
 * generates, so the probe meets an encoder it does not share.
 *
 *   vxi11_test_server
 *
 * Listens at a port of the library's choice, registers the
 * device core program with the portmapper, prints the port on stdout and
 * then one line per call ("create_link NAME", "destroy_link LID").
 * Devices: inst0 exists; every other name is not accessible (error 3). Ends itself after a minute
 * so a test that dies cannot leave it behind. */
#include <rpc/pmap_clnt.h>
#include <rpc/rpc.h>
#include <stdio.h>
#include <string.h>
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
    /* A port of the library's choice on every address: inside the test's
     * network namespace that is loopback alone. */
    SVCXPRT *transport = svctcp_create(RPC_ANYSOCK, 0, 0);
    if (transport == NULL) {
        fprintf(stderr, "vxi11_test_server: svctcp_create failed\n");
        return 1;
    }
    pmap_unset(DEVICE_CORE, DEVICE_CORE_VERSION);
    if (!svc_register(transport, DEVICE_CORE, DEVICE_CORE_VERSION, device_core_1, IPPROTO_TCP)) {
        fprintf(stderr, "vxi11_test_server: cannot register with the portmapper\n");
        return 1;
    }
    printf("%d\n", transport->xp_port);
    fflush(stdout);
    svc_run();
    return 1;
}
