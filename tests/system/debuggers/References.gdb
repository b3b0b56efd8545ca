set disable-randomization off
set debuginfod enabled off
set width 0
set confirm off
break Stop
commands
silent
up-silently 2
end

run
info args
kill
