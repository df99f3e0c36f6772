# Makes the pictures and videos that the tests of the user's own backgrounds add: cmake -DFOLDER=... -P this-file
# What is there already is kept: the files depend on nothing but this script.
file(MAKE_DIRECTORY ${FOLDER})
if(EXISTS ${FOLDER}/done AND ${FOLDER}/done IS_NEWER_THAN ${CMAKE_CURRENT_LIST_FILE})
    return()
endif()

function(picture name)
    execute_process(COMMAND convert ${ARGN} ${name} WORKING_DIRECTORY ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
function(video name)
    execute_process(COMMAND ffmpeg -y -loglevel error -f lavfi -i ${ARGN} ${name} WORKING_DIRECTORY ${FOLDER}
                    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(scene -size 320x200 "gradient:#1e90ff-#ffd700")
picture(baseline.jpg ${scene} -interlace none -quality 92)
picture(progressive.jpg ${scene} -interlace JPEG -quality 92)
picture(cmyk.jpg ${scene} -colorspace CMYK)
picture(grey.jpg ${scene} -colorspace Gray)
picture(plain24.png ${scene} -define png:color-type=2 -depth 8)
picture(alpha32.png -size 320x200 xc:none -fill red -draw "rectangle 80,50 240,150" -define png:color-type=6 -depth 8)
picture(palette8.png ${scene} -colors 64 -define png:color-type=3 -depth 8)
picture(grey8.png ${scene} -colorspace Gray -define png:color-type=0 -depth 8)
picture(deep48.png ${scene} -depth 16 -define png:color-type=2 -define png:bit-depth=16)
picture(plain.bmp ${scene} -type TrueColor)
# A corner of its own colour tells how a picture is turned.
picture(corner.jpg -size 320x200 xc:white -fill red -draw "rectangle 0,0 159,99" -quality 95)
picture(red.jpg -size 640x400 "xc:#c02020")
picture(green.jpg -size 640x400 "xc:#20a040")
picture(blue.png -size 640x400 "xc:#2040c0" -define png:color-type=2 -depth 8)

picture(largest.jpg -size 4096x4096 plasma:fractal -quality 90)
picture(too_wide.png -size 4097x10 xc:gray80 -define png:color-type=2 -depth 8)
picture(too_high.png -size 10x4097 xc:gray80 -define png:color-type=2 -depth 8)

set(h264 -c:v libx264 -pix_fmt yuv420p)
video(clip.mp4 testsrc=size=320x240:rate=25:duration=1 ${h264})
video(clip.mov testsrc=size=640x360:rate=25:duration=1 ${h264})
video(dark_start.mp4 "color=black:size=320x240:rate=25:duration=0.4[dark]\;color=white:size=320x240:rate=25:duration=1[light]\;[dark][light]concat" ${h264})
video(largest.mp4 testsrc=size=1920x1200:rate=5:duration=0.6 ${h264})
# The other codec takes odd sizes too.
video(too_wide.mp4 testsrc=size=1921x1200:rate=5:duration=0.6 -c:v mpeg4 -q:v 5)
video(too_high.mov testsrc=size=1920x1201:rate=5:duration=0.6 -c:v mpeg4 -q:v 5)
file(WRITE ${FOLDER}/done "")
