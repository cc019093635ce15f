/* SPDX-License-Identifier: MIT
 *
 * A flight simulation on a page: flies circles about the helipad of the demo world, 100 records a
 * second, and tells once a second what the visual channel answers. It needs visual_channel_wire.h
 * beside it, and a POSIX system for the socket and the clock:
 *
 *     cc -std=c99 -o host host.c -lm
 *     ./host [PORT [FEEDBACK_PORT [SECONDS]]]
 *
 * The ports are 10004 and 10005, and it flies until it is stopped, unless the arguments say
 * otherwise. Its exit status is 1 when no feedback came.
 */
#define _POSIX_C_SOURCE 200809L

#include "visual_channel_wire.h"

#include <arpa/inet.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <time.h>

enum { RATE = 100 }; /* records per second */

static const double PI = 3.14159265358979323846;
static const double PAD_LATITUDE = 19.7124631, PAD_LONGITUDE = -155.0625125;
static const double METRES_NORTH = 110690, METRES_EAST = 104785; /* per degree, there */
static const double RADIUS = 300, SPEED = 30;                    /* m, m/s */
static const double ALTITUDE = 100;                              /* m above sea level */

/* Where the helicopter is after so many seconds: on a circle to the right, ahead along it, banked
 * so that what is on board stays in its place. */
static void fly(double seconds, vc_record* record) {
    double bearing = SPEED / RADIUS * seconds; /* from the pad, clockwise from north */
    record->latitude = PAD_LATITUDE + RADIUS * cos(bearing) / METRES_NORTH;
    record->longitude = PAD_LONGITUDE + RADIUS * sin(bearing) / METRES_EAST;
    record->altitude = (float)ALTITUDE;
    record->heading = (float)fmod(bearing * 180 / PI + 90, 360);
    record->roll = (float)(atan2(SPEED * SPEED, 9.81 * RADIUS) * 180 / PI);
}

static void fail(const char* what, int port) {
    fprintf(stderr, "host: %s port %d: ", what, port);
    perror(NULL);
    exit(1);
}

/* A socket that feedback comes to and records go out from; ends the program when it can't be. */
static int open_socket(int feedback_port) {
    int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    struct sockaddr_in own = {0};
    own.sin_family = AF_INET;
    own.sin_port = htons((uint16_t)feedback_port);
    own.sin_addr.s_addr = htonl(INADDR_ANY);
    if (descriptor < 0 || bind(descriptor, (struct sockaddr*)&own, sizeof own) != 0)
        fail("feedback at", feedback_port);
    return descriptor;
}

/* Takes all feedback that waits, and keeps the newest. The number of datagrams taken. */
static long receive(int descriptor, vc_feedback* feedback) {
    uint8_t bytes[VC_FEEDBACK_SIZE + 1]; /* one more, so that a longer one is seen to be */
    long count = 0, size;
    while ((size = (long)recv(descriptor, bytes, sizeof bytes, MSG_DONTWAIT)) >= 0)
        count += vc_feedback_decode(feedback, bytes, size);
    return count;
}

/* Sleeps until so many records' time has passed since the start, whatever the work between took. */
static void wait_for_turn(const struct timespec* start, long number) {
    struct timespec turn = *start;
    turn.tv_sec += number / RATE;
    turn.tv_nsec += number % RATE * (1000000000L / RATE);
    if (turn.tv_nsec >= 1000000000L) {
        turn.tv_sec++;
        turn.tv_nsec -= 1000000000L;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &turn, NULL) != 0)
        ;
}

int main(int argc, char** argv) {
    int port = argc > 1 ? atoi(argv[1]) : 10004;
    int feedback_port = argc > 2 ? atoi(argv[2]) : 10005;
    char* end = NULL; /* of the number that tells the seconds */
    long last = argc > 3 ? RATE * strtol(argv[3], &end, 10) : 0; /* 0: none is */
    int descriptor;
    struct sockaddr_in channel = {0};
    const struct sockaddr* address = (const struct sockaddr*)&channel;
    struct timespec start;
    vc_record record;
    vc_feedback feedback = {0};
    uint8_t bytes[VC_RECORD_SIZE];
    long sent, received = 0;

    if (port < 1 || port > 65535 || feedback_port < 1 || feedback_port > 65535 || last < 0 ||
        (end && (end == argv[3] || *end != '\0'))) {
        fprintf(stderr, "usage: host [PORT [FEEDBACK_PORT [SECONDS]]]\n");
        return 2;
    }
    descriptor = open_socket(feedback_port);
    channel.sin_family = AF_INET;
    channel.sin_port = htons((uint16_t)port);
    channel.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    vc_record_init(&record);
    clock_gettime(CLOCK_MONOTONIC, &start);
    for (sent = 0; last == 0 || sent < last;) {
        fly((double)sent / RATE, &record);
        record.command = sent == 0 ? VC_COMMAND_RESET : 0; /* once: each one resets the scene */
        vc_record_encode(&record, bytes);
        if (sendto(descriptor, bytes, sizeof bytes, 0, address, sizeof channel) < 0)
            fail("records to", port);
        wait_for_turn(&start, ++sent);
        received += receive(descriptor, &feedback);
        if (sent % RATE != 0) continue;
        if (received == 0)
            printf("no feedback on port %d yet: does visual_channel run?\n", feedback_port);
        else
            printf("%ld s, %ld feedbacks: %.2f m above the ground at latitude %.6f "
                   "longitude %.6f\n",
                   sent / RATE, received, feedback.height_above_ground, feedback.ground_latitude,
                   feedback.ground_longitude);
        fflush(stdout);
    }
    return received > 0 ? 0 : 1;
}
