"""A way to the bus whose address is given that hangs behind its greeting: nothing is carried any more once the client wants to be told of
signals. Prints the address that it listens at, in the folder that is given next."""
import socket
import sys
import threading
import time

real = sys.argv[1].split("path=")[1].split(",")[0]
place = sys.argv[2] + "/bus"
listener = socket.socket(socket.AF_UNIX)
listener.bind(place)
listener.listen()
print("unix:path=" + place, flush=True)
client, _ = listener.accept()
bus = socket.socket(socket.AF_UNIX)
bus.connect(real)


def carry_answers():
    while data := bus.recv(65536):
        client.sendall(data)


threading.Thread(target=carry_answers, daemon=True).start()
while data := client.recv(65536):
    if b"AddMatch" in data:
        print("hangs", flush=True)
        time.sleep(60)
    bus.sendall(data)
