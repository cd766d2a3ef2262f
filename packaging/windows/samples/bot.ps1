# The same as bot.vbs, in Windows PowerShell (5.1, which runs in one apartment as the session wants it).
#
#   powershell -File bot.ps1 HOST PORT USER PASSWORD
param([string]$Server, [int]$Port, [string]$User, [string]$Password)

Add-Type -Path (Join-Path $PSScriptRoot 'Sink.cs')
Add-Type -AssemblyName System.Windows.Forms
$Modern = 1; $Chat = 1; $GroupChat = 3; $CodeTimeout = 408
$script:loggedIn = $false
$script:result = $null

$session = New-Object -ComObject Quorix.cSession
$sink = New-Object Sink $session
$sink.add_Authorized({
    $script:loggedIn = $true
    Write-Host "Logged in as $($session.MyJid)"
    $session.FetchRoster()
    $session.SendMyPresence()
})
$sink.add_Disconnected({ $script:loggedIn = $false })
$sink.add_RosterEnd({ foreach ($contact in $session.Roster) { Write-Host "Contact $($contact.JID) $($contact.NickName)" } })
$sink.add_Message({
    param($message)
    if ($message.MSG_Type -eq $GroupChat -or $message.Body -eq '') { return }
    Write-Host "$($message.FromJid): $($message.Body)"
    if ($message.Body -eq 'quit') { $script:result = 0; return }
    $session.CreateMessage($message.FromJid, $Chat, "You said: $($message.Body)", '').SendMessage()
})
$sink.add_Error({
    param($from, $code, $why)
    Write-Host "Error $code from ${from}: $why"
    if ($from -ne $session.ServerAddress) { return }
    if ($why.StartsWith('conflict') -or (-not $script:loggedIn -and $code -ne $CodeTimeout)) { $script:result = 1 }
})
$sink.add_SocketError({ param($why, $code) Write-Host "Connection: $why" })

$session.Mode = $Modern
$session.ServerAddress = $Server
if ($Port -gt 32767) { $Port -= 65536 }  # 16 bits with a sign
$session.Port = $Port
$session.username = $User
$session.Password = $Password
$session.Resource = 'bot'
$session.LoginTimeout = 20
$session.ReconnectInterval = 5
$session.Connect($false)
while ($null -eq $script:result) {
    [System.Windows.Forms.Application]::DoEvents()  # events come here
    Start-Sleep -Milliseconds 50
}
$session.Disconnect()
$sink.Dispose()
exit $script:result
