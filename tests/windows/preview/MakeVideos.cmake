# Makes the files that the media tests read: cmake -DFOLDER=... -P MakeVideos.cmake
function(make name)
    execute_process(COMMAND ffmpeg -y -loglevel error ${ARGN} ${FOLDER}/${name} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
set(h264 -c:v libx264 -pix_fmt yuv420p)
make(small.mp4 -f lavfi -i testsrc=size=320x240:rate=25:duration=1 ${h264})
make(wide.mov -f lavfi -i testsrc=size=640x360:rate=25:duration=1 ${h264})
make(sound.m4a -f lavfi -i sine=duration=1 -c:a aac)
